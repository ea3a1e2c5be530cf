// Colour tables and converters against the formulas, and against a picture converted elsewhere.
#include "pixel/convert.h"

#include "decode/buffers.h"
#include "pixel/color_tables.h"
#include "support/streams.h"

#include <cmath>

namespace {

struct ArenaFree {
  void operator()(void* block) const { Arena_Free(block); }
};
using PlanesPtr = std::unique_ptr<JdecPlanes, ArenaFree>;
using RasterPtr = std::unique_ptr<JdecRaster, ArenaFree>;

struct Rgb {
  int32_t r, g, b;
};

/** JFIF's matrix in fractions of 16 bits; green carries two rounding halves, so that neutral chroma makes it one brighter. */
Rgb Expected_Color(int32_t y, int32_t cb, int32_t cr) {
  const double u = (cb - 128) / 65536.0, v = (cr - 128) / 65536.0;
  const auto limited = [y](double offset) { return std::clamp(y + (int32_t)std::floor(offset), 0, 255); };
  return {limited(91881 * v + 0.5), limited(-22554 * u - 46802 * v + 1), limited(116130 * u + 0.5)};
}

Bytes Expected_Pixel(int32_t format, const Rgb& c) {
  const auto word = [](int32_t value) { return Bytes{(uint8_t)value, (uint8_t)(value >> 8)}; };
  if (format == PixelRgb565) return word(c.r / 8 * 2048 + c.g / 4 * 32 + c.b / 8);
  if (format == PixelRgb555) return word(c.r / 8 * 1024 + c.g / 8 * 32 + c.b / 8);
  Bytes pixel = {(uint8_t)c.b, (uint8_t)c.g, (uint8_t)c.r};
  if (format == PixelRgb32) pixel.push_back(0);
  return pixel;
}

struct FormatCase {
  int32_t format;
  int32_t bits;
  const char* extension;
} const formats[] = {
    {PixelRgb24, 24, "bgr24"}, {PixelRgb32, 32, "bgr32"}, {PixelRgb565, 16, "rgb565"}, {PixelRgb555, 16, "rgb555"}};

/** A raster of 0xCC bytes with the planes converted into it. */
RasterPtr Converted(const FormatCase& format, const JdecPlanes* planes) {
  RasterPtr raster(Raster_New(planes->yWidth, planes->yHeight, format.bits));
  memset(raster->rows[raster->height - 1], 0xCC, (size_t)raster->height * (size_t)raster->pitch);
  Convert_Planes(format.format, planes, raster.get());
  return raster;
}

struct Converters : LibraryTest {};

TEST_F(Converters, EveryPairOfChromaValues) {
  const PlanesPtr planes(Planes_New(512, 512, 4, 1));
  ASSERT_EQ(planes->crWidth, 256);
  const uint8_t lumas[2][4] = {{0, 255, 16, 128}, {1, 254, 77, 200}};
  for (const auto& luma : lumas) {
    for (int32_t y = 0; y < 512; ++y) {
      for (int32_t x = 0; x < 512; ++x) {
        planes->yRows[y][x] = luma[y % 2 * 2 + x % 2];
        planes->cbRows[y / 2][x / 2] = (uint8_t)(y / 2);
        planes->crRows[y / 2][x / 2] = (uint8_t)(x / 2);
      }
    }
    for (const FormatCase& format : formats) {
      const RasterPtr raster = Converted(format, planes.get());
      for (int32_t i = 0; i < 512 * 512; ++i) {
        const int32_t x = i % 512, y = i / 512;
        const Bytes expected = Expected_Pixel(format.format, Expected_Color(luma[y % 2 * 2 + x % 2], y / 2, x / 2));
        const uint8_t* const pixel = raster->rows[y] + (size_t)x * expected.size();
        ASSERT_EQ(Bytes(pixel, pixel + expected.size()), expected) << format.extension << " cb " << y / 2 << " cr " << x / 2;
      }
    }
  }
}

TEST_F(Converters, PictureConvertedElsewhere) {
  const Bytes samples = Read_File(Data_Path("planes-48x16.yuv"));
  const PlanesPtr planes(Planes_New(48, 16, 4, 1));
  const uint8_t* next = samples.data();
  for (int32_t y = 0; y < 16; ++y, next += 48) memcpy(planes->yRows[y], next, 48);
  for (int32_t y = 0; y < 8; ++y, next += 24) memcpy(planes->cbRows[y], next, 24);
  for (int32_t y = 0; y < 8; ++y, next += 24) memcpy(planes->crRows[y], next, 24);
  for (const FormatCase& format : formats) {
    const RasterPtr raster = Converted(format, planes.get());
    Bytes pixels;
    for (int32_t y = 0; y < 16; ++y) pixels.insert(pixels.end(), raster->rows[y], raster->rows[y] + raster->pitch);
    EXPECT_EQ(pixels, Read_File(Data_Path(std::string("planes-48x16.") + format.extension))) << format.extension;
  }
}

TEST_F(Converters, ClampTableAndForwardColours) {
  for (int32_t i = -256; i < 1152; ++i) {
    const int32_t expected = i < 0 ? 0 : i < 256 ? i : i < 640 ? 255 : i < 1024 ? 0 : i - 1024;
    ASSERT_EQ(rangeLimit[i], expected) << i;
  }
  const auto forward = [](int32_t r, int32_t g, int32_t b) {
    const auto sum = [=](int32_t fromR, int32_t fromG, int32_t fromB) {
      return (rgbYccTable[256 * fromR + r] + rgbYccTable[256 * fromG + g] + rgbYccTable[256 * fromB + b]) >> 16;
    };
    return std::vector<int32_t>{sum(0, 1, 2), sum(3, 4, 5), sum(5, 6, 7)};
  };
  for (int32_t i = 0; i < 256 * 256; ++i) {  // The cube's surface and insides, in steps of 6.
    const int32_t r = i % 43 * 6, g = i / 43 % 43 * 6, b = i / 1849 % 43 * 6;
    const std::vector<int32_t> ycc = forward(r, g, b);
    ASSERT_NEAR(ycc[0], 0.299 * r + 0.587 * g + 0.114 * b, 0.51);
    ASSERT_NEAR(ycc[1], 128 - 0.16874 * r - 0.33126 * g + 0.5 * b, 0.51);
    ASSERT_NEAR(ycc[2], 128 + 0.5 * r - 0.41869 * g - 0.08131 * b, 0.51);
  }
  EXPECT_EQ(forward(255, 255, 255), (std::vector<int32_t>{255, 128, 128}));
  EXPECT_EQ(forward(255, 0, 0), (std::vector<int32_t>{76, 85, 255}));
  EXPECT_EQ(forward(0, 255, 0), (std::vector<int32_t>{150, 44, 21}));
  EXPECT_EQ(forward(0, 0, 255), (std::vector<int32_t>{29, 255, 107}));
}

}  // namespace
