// Converters and dithering of every level against the plain ones, at every address and length, and for every colour there is.
#include "pixel/color_tables.h"
#include "pixel/dither.h"
#include "support/levels.h"
#include "support/streams.h"

#include <algorithm>

namespace {

constexpr uint8_t Guard = 0xA7;

/** Memory for a kernel to write, from `shift` bytes behind a multiple of 64 on, with guards on both sides. */
struct Output {
  Output(size_t size, size_t shift) : bytes(size), store(size + shift + 192, Guard) {
    start = store.data() + 64 + (64 - (uintptr_t)store.data() % 64) % 64 + shift;
  }
  /** What was written. Clears it, and finds the guards whole. */
  Bytes Take() {
    Bytes written(start, start + bytes);
    std::fill_n(start, bytes, Guard);
    EXPECT_EQ((size_t)std::ranges::count(store, Guard), store.size());
    return written;
  }
  size_t bytes;
  Bytes store;
  uint8_t* start;
};

/** Samples that end where their memory does, so that a sanitizer sees one too many, and begin anywhere. */
struct Input {
  Input(Noise* noise, size_t count, int32_t shape) : shift(noise->Next() % 32), store(new uint8_t[shift + count]) {
    for (size_t i = 0; i < count; ++i) {
      const auto any = (uint8_t)(noise->Next() >> 4);
      store[shift + i] = shape == 0 ? any : shape == 1 ? 0 : shape == 2 ? 255 : any % 2 ? 255 : 0;
    }
  }
  operator uint8_t*() const { return &store[shift]; }
  size_t shift;
  std::unique_ptr<uint8_t[]> store;
};

struct Converter {
  ConvertRowsKernel Kernels::*kernel;
  ConvertRowsKernel plain;
  size_t bytes;
};
constexpr Converter converters[] = {{&Kernels::toRgb24, To_Rgb24_Plain, 3},       {&Kernels::toRgb32, To_Rgb32_Plain, 4},
                                    {&Kernels::toRgb24Stream, To_Rgb24_Plain, 3}, {&Kernels::toRgb32Stream, To_Rgb32_Plain, 4},
                                    {&Kernels::toRgb565, To_Rgb565_Plain, 2},     {&Kernels::toRgb555, To_Rgb555_Plain, 2}};

/** Shapes of inputs: noise, all 0, all 255, a mixture of both. Lengths: all short ones, then some long ones. */
constexpr int32_t Shapes = 4;
constexpr int32_t ShortPairs = 70;
int32_t Pairs_Of(int32_t round) { return round <= ShortPairs ? round : 97 * (round - ShortPairs) + 160; }

struct ConverterKernels : LibraryTest {
  Noise noise{6};
  const ColorTables tables = {rangeLimit, yccRgbTable};
};

TEST_F(ConverterKernels, EveryLengthAtAnyAddress) {
  for (const auto& [level, mask] : Test_Levels()) {
    const Kernels tested = Kernels_Select(mask);
    for (int32_t round = 0; round < (ShortPairs + 8) * Shapes; ++round) {
      const int32_t pairs = Pairs_Of(round / Shapes), luma = round % Shapes, chroma = noise.Between(0, Shapes - 1);
      const auto count = (size_t)pairs;
      const Input upper(&noise, 2 * count, luma), lower(&noise, 2 * count, luma), cb(&noise, count, chroma), cr(&noise, count, 0);
      for (const Converter& converter : converters) {
        const size_t size = 2 * count * converter.bytes, shift = noise.Next() % 64;
        Output outUpper(size, noise.Next() % 2 ? shift : 0), outLower(size, noise.Next() % 2 ? shift : 32);
        converter.plain(&tables, upper, lower, cb, cr, outUpper.start, outLower.start, pairs);
        const Bytes upperExpected = outUpper.Take(), lowerExpected = outLower.Take();
        (tested.*converter.kernel)(&tables, upper, lower, cb, cr, outUpper.start, outLower.start, pairs);
        ASSERT_EQ(outUpper.Take(), upperExpected) << level << ", " << pairs << " pairs, converter " << &converter - converters;
        ASSERT_EQ(outLower.Take(), lowerExpected) << level << ", " << pairs << " pairs, converter " << &converter - converters;
      }
    }
  }
}

TEST_F(ConverterKernels, EveryColour) {
  constexpr size_t Pairs = 65536;
  Bytes cb(Pairs), cr(Pairs), upper(2 * Pairs), lower(2 * Pairs);
  for (size_t i = 0; i < Pairs; ++i) cb[i] = (uint8_t)i, cr[i] = (uint8_t)(i >> 8);
  for (const Converter& converter : converters) {
    Output outUpper(2 * Pairs * converter.bytes, 0), outLower(2 * Pairs * converter.bytes, 0);
    for (int32_t luma = 0; luma < 256; luma += 4) {
      for (size_t i = 0; i < 2 * Pairs; ++i) upper[i] = (uint8_t)(luma + (int32_t)i % 2), lower[i] = (uint8_t)(upper[i] + 2);
      const auto converted = [&](ConvertRowsKernel kernel) {
        kernel(&tables, upper.data(), lower.data(), cb.data(), cr.data(), outUpper.start, outLower.start, Pairs);
        return std::pair(outUpper.Take(), outLower.Take());
      };
      const auto expected = converted(converter.plain);
      for (const auto& [level, mask] : Test_Levels()) {
        ASSERT_TRUE(converted(Kernels_Select(mask).*converter.kernel) == expected) << level << ", luma " << luma;
      }
    }
  }
}

/** Quantisers as the rule has them. */
struct Quantisers {
  Quantisers() {
    const auto level = [](size_t sum, int32_t offset, int32_t least, int32_t most) {
      return (uint8_t)std::clamp(((int32_t)sum - offset) >> 4, least, most);
    };
    for (size_t i = 0; i < 272; ++i) y[i] = (uint8_t)(level(i, 8, 1, 14) << 4);
    for (size_t i = 0; i < 144; ++i) cr[i] = level(i, 40, 0, 3), cb[i] = (uint8_t)(cr[i] << 2);
  }
  uint8_t y[272], cb[144], cr[144];
};

TEST_F(ConverterKernels, DitheringOfEverySampleAndLength) {
  const Quantisers quantisers;
  const DitherTables ditherTables = {quantisers.y, quantisers.cb, quantisers.cr};
  for (const auto& [level, mask] : Test_Levels()) {
    const Kernels tested = Kernels_Select(mask);
    // The last 16 rounds have all samples, with one dither value each.
    for (int32_t round = 0; round < (ShortPairs + 8) * Shapes + 16; ++round) {
      const int32_t one = round - (ShortPairs + 8) * Shapes, pairs = one < 0 ? Pairs_Of(round / Shapes) : 256;
      const auto count = (size_t)pairs;
      const Input y(&noise, 2 * count, round % Shapes), cb(&noise, count, round % 3), cr(&noise, count, 0);
      uint8_t matrixRow[4];
      for (uint8_t& value : matrixRow) value = (uint8_t)(one < 0 ? noise.Between(0, 15) : one);
      for (size_t i = 0; one >= 0 && i < count; ++i) y[2 * i] = y[2 * i + 1] = cb[i] = (uint8_t)i, cr[i] = (uint8_t)~i;
      Output out(2 * count, noise.Next() % 64);
      Dither_Row_Plain(&ditherTables, y, cb, cr, matrixRow, out.start, pairs);
      const Bytes expected = out.Take();
      tested.ditherRow(&ditherTables, y, cb, cr, matrixRow, out.start, pairs);
      ASSERT_EQ(out.Take(), expected) << level << ", " << pairs << " pairs";
    }
  }
}

}  // namespace
