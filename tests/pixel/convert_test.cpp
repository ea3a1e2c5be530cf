// Colour tables, and the converters of every kernel level, against the formulas and against a picture converted elsewhere.
#include "pixel/convert.h"

#include "pixel/dither.h"
#include "pixel/forward.h"
#include "support/levels.h"
#include "support/streams.h"

#include <algorithm>
#include <cmath>

namespace {

/** JFIF's matrix in fractions of 16 bits. Green has two rounding halves, so that neutral chroma adds 1. */
Bytes Expected_Pixel(int32_t format, int32_t y, int32_t cb, int32_t cr) {
  const double u = (cb - 128) / 65536.0, v = (cr - 128) / 65536.0;
  const auto limited = [y](double offset) { return std::clamp(y + (int32_t)std::floor(offset), 0, 255); };
  const int32_t r = limited(91881 * v + 0.5), g = limited(-22554 * u - 46802 * v + 1), b = limited(116130 * u + 0.5);
  const int32_t word = format == PixelRgb565 ? r / 8 << 11 | g / 4 << 5 | b / 8 : r / 8 << 10 | g / 8 << 5 | b / 8;
  if (format == PixelRgb565 || format == PixelRgb555) return {(uint8_t)word, (uint8_t)(word >> 8)};
  Bytes pixel = {(uint8_t)b, (uint8_t)g, (uint8_t)r};
  if (format == PixelRgb32) pixel.push_back(0);
  return pixel;
}

const struct {
  int32_t format, bits;
  const char* extension;
} formats[] = {{PixelRgb24, 24, "bgr24"}, {PixelRgb32, 32, "bgr32"}, {PixelRgb565, 16, "rgb565"}, {PixelRgb555, 16, "rgb555"}};

/** Converts the planes into a raster of 0xCC bytes. Gives its rows, top row first. Nothing outside it may be written. */
Bytes Converted(int32_t format, int32_t bits, const JdecPlanes* planes, int32_t ditherMode = DitherNormal) {
  const int32_t width = planes->yWidth, height = planes->yHeight, pitch = width * bits / 8;
  Bytes store(64 + (size_t)(pitch * height) + 64, 0xCC), top;
  std::vector<uint8_t*> rows;
  for (int32_t y = 0; y < height; ++y) rows.push_back(store.data() + 64 + pitch * (height - 1 - y));
  JdecRaster raster = {width, height, bits, pitch, rows.data()};
  Convert_Planes(format, planes, &raster, ditherMode);
  EXPECT_EQ(std::count(store.begin(), store.begin() + 64, 0xCC) + std::count(store.end() - 64, store.end(), 0xCC), 128);
  for (const uint8_t* row : rows) top.insert(top.end(), row, row + pitch);
  return top;
}

/** The kernels of each level; and the same with the converters of large rasters for rasters of any size. */
std::vector<std::pair<std::string, Kernels>> Converter_Kernels() {
  std::vector<std::pair<std::string, Kernels>> all;
  for (const auto& [level, mask] : Test_Levels()) {
    Kernels record = Kernels_Select(mask);
    all.emplace_back(level, record);
    record.toRgb24 = record.toRgb24Stream;
    record.toRgb32 = record.toRgb32Stream;
    all.emplace_back(std::string(level) + " past the cache", record);
  }
  return all;
}

/** Planes of noise. Luma, Cb and Cr follow one another in memory. */
PlanesPtr Noise_Planes(Noise* noise, int32_t width, int32_t height) {
  PlanesPtr planes(Planes_New(width, height, 4, 1));
  const int32_t samples = width * height + 2 * planes->cbWidth * planes->cbHeight;
  std::ranges::copy(noise->Some((size_t)samples), planes->yRows[0]);
  return planes;
}

using Converters = LibraryTest;

TEST_F(Converters, EveryPairOfChromaValuesAndEverySmallSize) {
  Noise noise{4};
  const auto levels = Converter_Kernels();
  for (int32_t size = 1; size <= 81; ++size) {
    const int32_t width = size < 81 ? size : 513, height = size < 81 ? 81 % (size + 3) + 1 : 513;
    const PlanesPtr planes = Noise_Planes(&noise, width, height);
    for (int32_t i = 0; size == 81 && i < 256 * 256; ++i) {
      planes->cbRows[i / 256][i % 256] = (uint8_t)(i / 256);
      planes->crRows[i / 256][i % 256] = (uint8_t)i;
    }
    for (const auto& [format, bits, name] : formats) {
      const size_t bytes = (size_t)bits / 8;
      Bytes expected((size_t)(width * height) * bytes, 0xCC);  // As the last column and row of odd sizes stay.
      for (int32_t i = 0; i < width * height; ++i) {
        const int32_t x = i % width, y = i / width;
        if (x == width / 2 * 2 || y == height / 2 * 2) continue;
        const Bytes pixel =
            Expected_Pixel(format, planes->yRows[y][x], planes->cbRows[y / 2][x / 2], planes->crRows[y / 2][x / 2]);
        std::ranges::copy(pixel, &expected[(size_t)i * bytes]);
      }
      for (const auto& [level, record] : levels) {
        kernels = record;
        ASSERT_TRUE(Converted(format, bits, planes.get()) == expected) << level << ", " << name << ", width " << width;
      }
      const Bytes otherDepth = Converted(format, bits ^ 8, planes.get());
      ASSERT_EQ((size_t)std::ranges::count(otherDepth, 0xCC), otherDepth.size());
    }
  }
}

/** The rule: each component is the step at or below the sum of the matrix's value and the sample, for chroma half the sample. */
int32_t Expected_Index(int32_t matrixValue, int32_t y, int32_t cb, int32_t cr) {
  const auto step = [matrixValue](int32_t sample, int32_t offset, int32_t least, int32_t most) {
    return std::clamp((sample + matrixValue - offset) >> 4, least, most);
  };
  return step(y, 8, 1, 14) << 4 | step(cb / 2, 40, 0, 3) << 2 | step(cr / 2, 40, 0, 3);
}

/** Every pixel is written: the last column and row of odd sizes use the chroma of their neighbours. */
TEST_F(Converters, DitherFollowsItsRuleAtEverySmallSize) {
  constexpr int32_t normal[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
  constexpr int32_t shrink[4][4] = {{0, 8, 14, 2}, {12, 4, 6, 10}, {11, 7, 5, 13}, {3, 15, 9, 1}};
  Noise noise{5};
  for (int32_t width = 2; width <= 70; ++width) {
    const int32_t height = 81 % (width + 3) + 2;
    const PlanesPtr planes = Noise_Planes(&noise, width, height);
    for (const auto& [mode, matrix] : {std::pair{DitherNormal, normal}, {DitherShrink, shrink}}) {
      Bytes expected;
      for (int32_t i = 0; i < width * height; ++i) {
        const int32_t x = i % width, y = i / width;
        const int32_t cx = std::min(x / 2, planes->cbWidth - 1), cy = std::min(y / 2, planes->cbHeight - 1);
        expected.push_back(
            (uint8_t)Expected_Index(matrix[y % 4][x % 4], planes->yRows[y][x], planes->cbRows[cy][cx], planes->crRows[cy][cx]));
      }
      for (const auto& [level, mask] : Test_Levels()) {
        kernels = Kernels_Select(mask);
        ASSERT_TRUE(Converted(PixelPalette8, 8, planes.get(), mode) == expected) << level << ' ' << width << 'x' << height;
      }
    }
  }
  const PlanesPtr thin(Planes_New(1, 9, 4, 1));
  EXPECT_EQ(Converted(PixelPalette8, 8, thin.get()), Bytes(9, 0xCC));
}

TEST_F(Converters, PicturePieceByPiece) {
  Noise noise{8};
  for (const auto& [width, height] : {std::pair{37, 21}, {4096, 1366}}) {  // The large one is written past the caches.
    const PlanesPtr planes = Noise_Planes(&noise, width, height);
    for (const auto& [format, bits] : {std::pair{PixelPalette8, 8}, {PixelRgb555, 16}, {PixelRgb24, 24}, {PixelRgb32, 32}}) {
      const Bytes whole = Converted(format, bits, planes.get());
      const size_t pitch = whole.size() / (size_t)height;
      const RasterPtr raster(Raster_New(width, height, bits));
      ASSERT_EQ((uintptr_t)raster->rows[height - 1] % 64, 0u);
      memset(raster->rows[height - 1], 0xCC, whole.size());
      for (int32_t first = 0; first < height / 2 + 1; first += 8) {
        const uint8_t* const next = raster->rows[std::min(2 * first, height - 1)];
        ASSERT_TRUE(2 * first >= height || std::count(next, next + pitch, 0xCC) == (ptrdiff_t)pitch) << first;
        Convert_Plane_Rows(format, planes.get(), raster.get(), DitherNormal, RasterLeft, first, 8);
      }
      for (int32_t y = 0; y < height; ++y) {
        ASSERT_EQ(memcmp(raster->rows[y], &whole[(size_t)y * pitch], pitch), 0) << bits << " bits, row " << y;
      }
    }
  }
}

TEST_F(Converters, PictureConvertedElsewhere) {
  const Bytes samples = Read_File(Data_Path("planes-48x16.yuv"));
  const PlanesPtr planes(Planes_New(48, 16, 4, 1));
  memcpy(planes->yRows[0], samples.data(), 48 * 16);  // Rows and planes follow one another.
  memcpy(planes->cbRows[0], &samples[48 * 16], 2 * 24 * 8);
  for (const auto& [format, bits, extension] : formats) {
    EXPECT_EQ(Converted(format, bits, planes.get()), Read_File(Data_Path(std::string("planes-48x16.") + extension))) << extension;
  }
  for (const auto& [mode, name] : {std::pair{DitherNormal, "normal"}, {DitherShrink, "shrink"}}) {
    const Bytes expected = Read_File(Data_Path(std::string("planes-48x16.dither-") + name));
    EXPECT_EQ(Converted(PixelPalette8, 8, planes.get(), mode), expected) << name;
  }
}

TEST_F(Converters, ForwardColours) {
  Noise noise{9};
  const RasterPtr raster(Raster_New(256, 256, 24));
  const PlanesPtr planes(Planes_New(256, 256, 4, 4));
  std::generate_n(raster->rows[255], 256 * 256 * 3, [&] { return (uint8_t)(noise.Next() % 18 * 15); });  // Many of them 0 or 255.
  RGB_To_YCC444(raster.get(), planes.get());
  for (int32_t i = 0; i < 256 * 256; ++i) {
    const int32_t x = i % 256, y = i / 256;
    const uint8_t* const pixel = raster->rows[y] + 3 * x;
    const int32_t b = pixel[0], g = pixel[1], r = pixel[2];
    ASSERT_NEAR(planes->yRows[y][x], 0.299 * r + 0.587 * g + 0.114 * b, 0.51);
    ASSERT_NEAR(planes->cbRows[y][x], 128 - 0.16874 * r - 0.33126 * g + 0.5 * b, 0.51);
    ASSERT_NEAR(planes->crRows[y][x], 128 + 0.5 * r - 0.41869 * g - 0.08131 * b, 0.51);
  }
}

}  // namespace
