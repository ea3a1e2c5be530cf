#include "pixel/convert.h"

#include "kernels/cpu.h"
#include "pixel/color_tables.h"
#include "pixel/dither.h"

#include <algorithm>

/** Rasters of this many bytes and more are written past the cache. While a raster fits, it is written and read faster there;
 *  half of the cache is for the rest of a frame's data, and all of a large one is seldom ours. */
static int64_t Stream_Bytes() {
  constexpr int64_t most = 16 << 20;
  static const int64_t bytes = std::min(Cpu_Cache_Bytes() / 2, most);
  return bytes;
}

/** Of a format: the kernel, and the one for large rasters. */
struct Converter {
  int32_t bitsPerPixel;
  ConvertRowsKernel Kernels::*convert;
  ConvertRowsKernel Kernels::*stream;
};

static constexpr Converter converters[] = {{8, nullptr, nullptr},
                                           {16, &Kernels::toRgb555, &Kernels::toRgb555},
                                           {16, &Kernels::toRgb565, &Kernels::toRgb565},
                                           {24, &Kernels::toRgb24, &Kernels::toRgb24Stream},
                                           {32, &Kernels::toRgb32, &Kernels::toRgb32Stream}};

static void Convert_Rows(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t first, int32_t count) {
  const Converter& converter = converters[pixelFormat];
  const bool large = static_cast<int64_t>(raster->pitch) * raster->height >= Stream_Bytes();
  const ConvertRowsKernel kernel = kernels.*(large ? converter.stream : converter.convert);
  const ColorTables tables = {rangeLimit, yccRgbTable};
  const int32_t pairs = planes->yWidth / 2, end = first + std::min(count, planes->yHeight / 2 - first);
  for (int32_t r = first; r < end; ++r) {
    kernel(&tables, planes->yRows[2 * r], planes->yRows[2 * r + 1], planes->cbRows[r], planes->crRows[r], raster->rows[2 * r],
           raster->rows[2 * r + 1], pairs);
  }
  if (large) kernels.endStream();
}

/** More than a picture has. */
static constexpr int32_t AllRows = MaxPictureSide;

void YCC_To_RGB24(const JdecPlanes* planes, JdecRaster* raster) { Convert_Rows(PixelRgb24, planes, raster, 0, AllRows); }
void YCC_To_RGB32(const JdecPlanes* planes, JdecRaster* raster) { Convert_Rows(PixelRgb32, planes, raster, 0, AllRows); }
void YCC_To_RGB565(const JdecPlanes* planes, JdecRaster* raster) { Convert_Rows(PixelRgb565, planes, raster, 0, AllRows); }
void YCC_To_RGB555(const JdecPlanes* planes, JdecRaster* raster) { Convert_Rows(PixelRgb555, planes, raster, 0, AllRows); }

void Convert_Plane_Rows(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode, int32_t first,
                        int32_t count) {
  if (converters[pixelFormat].bitsPerPixel != raster->bitsPerPixel) return;
  if (pixelFormat == PixelPalette8) {
    YCC_To_Palette8_Rows(planes, raster, ditherMode, first, count);
  } else {
    Convert_Rows(pixelFormat, planes, raster, first, count);
  }
}

void Convert_Planes(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode) {
  Convert_Plane_Rows(pixelFormat, planes, raster, ditherMode, 0, AllRows);
}
