// Colour tables and converters of every level against the formulas, and against a picture converted elsewhere.
#include "pixel/convert.h"

#include "decode/buffers.h"
#include "pixel/color_tables.h"
#include "pixel/dither.h"
#include "pixel/forward.h"
#include "support/levels.h"
#include "support/streams.h"

#include <algorithm>
#include <cmath>

namespace {

using PlanesPtr = std::unique_ptr<JdecPlanes, Releaser<Arena_Free>>;
using RasterPtr = std::unique_ptr<JdecRaster, Releaser<Arena_Free>>;

/** JFIF's matrix in fractions of 16 bits; green carries two rounding halves, so that neutral chroma makes it one brighter. */
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

/** The rows, top first, of a raster of 0xCC bytes with the planes converted into it. */
Bytes Converted(int32_t format, int32_t bits, const JdecPlanes* planes, int32_t ditherMode = DitherNormal) {
  const RasterPtr raster(Raster_New(planes->yWidth, planes->yHeight, bits));
  memset(raster->rows[raster->height - 1], 0xCC, (size_t)raster->height * (size_t)raster->pitch);
  Convert_Planes(format, planes, raster.get(), ditherMode);
  Bytes rows;
  for (int32_t y = 0; y < raster->height; ++y) rows.insert(rows.end(), raster->rows[y], raster->rows[y] + raster->pitch);
  return rows;
}

using Converters = LibraryTest;

TEST_F(Converters, EveryPairOfChromaValuesAndEverySmallSize) {
  Noise noise{4};
  for (const auto& [level, mask] : Test_Levels()) {
    kernels = Kernels_Select(mask);
    for (int32_t size = 1; size <= 81; ++size) {
      const int32_t width = size < 81 ? size : 513, height = size < 81 ? 81 % (size + 3) + 1 : 513;
      const PlanesPtr planes(Planes_New(width, height, 4, 1));
      for (int32_t y = 0; y < height; ++y) std::ranges::copy(noise.Some((size_t)width), planes->yRows[y]);
      for (int32_t i = 0; i < planes->cbWidth * planes->cbHeight; ++i) {
        const int32_t x = i % planes->cbWidth, y = i / planes->cbWidth;
        planes->cbRows[y][x] = (uint8_t)(size < 81 ? noise.Next() >> 9 : y);
        planes->crRows[y][x] = (uint8_t)(size < 81 ? noise.Next() >> 9 : x);
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
        ASSERT_TRUE(Converted(format, bits, planes.get()) == expected) << level << ", " << name << ", width " << width;
        const Bytes otherDepth = Converted(format, bits ^ 8, planes.get());
        ASSERT_EQ((size_t)std::ranges::count(otherDepth, 0xCC), otherDepth.size());
      }
    }
  }
}

/** Also of odd sizes each pixel is written: the last column and row take the chroma beside them. */
TEST_F(Converters, DitherKeepsToLevelsAtEverySmallSize) {
  for (const auto& [level, mask] : Test_Levels()) {
    Noise noise{5};
    kernels = Kernels_Select(mask);
    for (int32_t size = 2; size <= 70; ++size) {
      const int32_t width = size, height = 81 % (size + 3) + 2;
      const PlanesPtr planes(Planes_New(width, height, 4, 1));
      for (int32_t y = 0; y < height; ++y) std::ranges::copy(noise.Some((size_t)width), planes->yRows[y]);
      std::ranges::copy(noise.Some((size_t)(planes->cbWidth * planes->cbHeight)), planes->cbRows[0]);
      std::ranges::copy(noise.Some((size_t)(planes->crWidth * planes->crHeight)), planes->crRows[0]);
      const Bytes normal = Converted(PixelPalette8, 8, planes.get()),
                  shrink = Converted(PixelPalette8, 8, planes.get(), DitherShrink);
      int32_t different = 0;
      for (int32_t i = 0; i < width * height; ++i) {
        const int32_t x = i % width, y = i / width;
        const int32_t cx = std::min(x / 2, planes->cbWidth - 1), cy = std::min(y / 2, planes->cbHeight - 1);
        // The level at or below the sample, or the next one: between two of them the dither decides.
        const auto near = [](int32_t step, double exact, int32_t least, int32_t most) {
          return step >= std::clamp((int32_t)std::floor(exact), least, most) &&
                 step <= std::clamp((int32_t)std::ceil(exact), least, most);
        };
        for (const int32_t index : {normal[(size_t)i], shrink[(size_t)i]}) {
          ASSERT_TRUE(near(index >> 4, (planes->yRows[y][x] - 8) / 16.0, 1, 14) &&
                      near(index >> 2 & 3, (planes->cbRows[cy][cx] / 2 - 40) / 16.0, 0, 3) &&
                      near(index & 3, (planes->crRows[cy][cx] / 2 - 40) / 16.0, 0, 3))
              << width << " x " << height << " at " << x << ", " << y;
        }
        different += normal[(size_t)i] != shrink[(size_t)i];
      }
      ASSERT_TRUE(different > 0 || height < 3 || width < 3);
    }
  }
  const PlanesPtr thin(Planes_New(1, 9, 4, 1));
  EXPECT_EQ(Converted(PixelPalette8, 8, thin.get()), Bytes(9, 0xCC));
}

TEST_F(Converters, PicturePieceByPiece) {
  Noise noise{8};
  for (const auto& [width, height] : {std::pair{37, 21}, {4096, 1366}}) {  // The large one goes past any cache.
    const PlanesPtr planes(Planes_New(width, height, 4, 1));
    std::ranges::copy(noise.Some((size_t)(width * height)), planes->yRows[0]);
    std::ranges::copy(noise.Some((size_t)(2 * planes->cbWidth * planes->cbHeight)), planes->cbRows[0]);  // Cr lies behind Cb.
    for (const auto& [format, bits] : {std::pair{PixelPalette8, 8}, {PixelRgb555, 16}, {PixelRgb24, 24}, {PixelRgb32, 32}}) {
      kernels = Kernels_Select(KernelPlain);
      const Bytes whole = Converted(format, bits, planes.get());
      const size_t pitch = whole.size() / (size_t)height;
      for (const auto& [level, mask] : Test_Levels()) {
        kernels = Kernels_Select(mask);
        const RasterPtr raster(Raster_New(width, height, bits));
        ASSERT_EQ((uintptr_t)raster->rows[height - 1] % 64, 0u);
        memset(raster->rows[height - 1], 0xCC, whole.size());
        for (int32_t first = 0; first < height / 2 + 1; first += 8) {
          const uint8_t* const next = raster->rows[std::min(2 * first, height - 1)];
          ASSERT_TRUE(2 * first >= height || std::count(next, next + pitch, 0xCC) == (ptrdiff_t)pitch) << level << first;
          Convert_Plane_Rows(format, planes.get(), raster.get(), DitherNormal, RasterLeft, first, 8);
        }
        for (int32_t y = 0; y < height; ++y) {
          ASSERT_EQ(memcmp(raster->rows[y], &whole[(size_t)y * pitch], pitch), 0) << level << ", " << bits << " bits, row " << y;
        }
      }
    }
  }
}

TEST_F(Converters, PictureConvertedElsewhere) {
  const Bytes samples = Read_File(Data_Path("planes-48x16.yuv"));
  const PlanesPtr planes(Planes_New(48, 16, 4, 1));
  memcpy(planes->yRows[0], samples.data(), 48 * 16);  // Rows and planes lie one behind the other.
  memcpy(planes->cbRows[0], &samples[48 * 16], 2 * 24 * 8);
  for (const auto& [format, bits, extension] : formats) {
    EXPECT_EQ(Converted(format, bits, planes.get()), Read_File(Data_Path(std::string("planes-48x16.") + extension))) << extension;
  }
  for (const auto& [mode, name] : {std::pair{DitherNormal, "normal"}, {DitherShrink, "shrink"}}) {
    const Bytes expected = Read_File(Data_Path(std::string("planes-48x16.dither-") + name));
    EXPECT_EQ(Converted(PixelPalette8, 8, planes.get(), mode), expected) << name;
  }
}

TEST_F(Converters, ClampTableAndForwardColours) {
  for (int32_t i = -256; i < 1152; ++i) {
    ASSERT_EQ(rangeLimit[i], i < 0 ? 0 : i < 256 ? i : i < 640 ? 255 : i < 1024 ? 0 : i - 1024) << i;
  }
  const RasterPtr raster(Raster_New(256, 256, 24));
  const PlanesPtr planes(Planes_New(256, 256, 4, 4));
  for (const bool fill : {true, false}) {
    for (int32_t i = 0; i < 256 * 256; ++i) {  // The cube's surface and insides, in steps of 15.
      const int32_t r = i % 18 * 15, g = i / 18 % 18 * 15, b = i / 324 % 18 * 15, x = i % 256, y = i / 256;
      uint8_t* const pixel = raster->rows[y] + 3 * x;
      if (fill) {
        std::ranges::copy(Bytes{(uint8_t)b, (uint8_t)g, (uint8_t)r}, pixel);
        continue;
      }
      ASSERT_NEAR(planes->yRows[y][x], 0.299 * r + 0.587 * g + 0.114 * b, 0.51);
      ASSERT_NEAR(planes->cbRows[y][x], 128 - 0.16874 * r - 0.33126 * g + 0.5 * b, 0.51);
      ASSERT_NEAR(planes->crRows[y][x], 128 + 0.5 * r - 0.41869 * g - 0.08131 * b, 0.51);
    }
    RGB_To_YCC444(raster.get(), planes.get());
  }
}

}  // namespace
