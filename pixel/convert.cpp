#include "pixel/convert.h"

#include "kernels/kernels.h"
#include "pixel/color_tables.h"
#include "pixel/dither.h"

#include <algorithm>

/** A raster of at least this many bytes that isn't read at once is written past the caches. A smaller one fits the caches nearest
 *  to the processor and is better left there. */
static constexpr int64_t LargeRaster = 2 << 20;

/** The kernels of a format. */
struct Converter {
  int32_t bitsPerPixel;
  ConvertRowsKernel Kernels::*convert;
  ConvertRowsKernel Kernels::*stream;  ///< Writes past the caches.
};

static constexpr Converter converters[] = {{8, nullptr, nullptr},
                                           {16, &Kernels::toRgb555, &Kernels::toRgb555},
                                           {16, &Kernels::toRgb565, &Kernels::toRgb565},
                                           {24, &Kernels::toRgb24, &Kernels::toRgb24Stream},
                                           {32, &Kernels::toRgb32, &Kernels::toRgb32Stream}};

static void Convert_Rows(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, RasterUse use, int32_t first,
                         int32_t count) {
  const Converter& converter = converters[pixelFormat];
  const bool large = use == RasterLeft && static_cast<int64_t>(raster->pitch) * raster->height >= LargeRaster;
  const ConvertRowsKernel kernel = kernels.*(large ? converter.stream : converter.convert);
  const ColorTables tables = {rangeLimit, yccRgbTable};
  const int32_t pairs = planes->yWidth / 2, end = first + std::min(count, planes->yHeight / 2 - first);
  for (int32_t r = first; r < end; ++r) {
    kernel(&tables, planes->yRows[2 * r], planes->yRows[2 * r + 1], planes->cbRows[r], planes->crRows[r], raster->rows[2 * r],
           raster->rows[2 * r + 1], pairs);
  }
  if (large) kernels.endStream();
}

/** More pairs of rows than any picture has. */
static constexpr int32_t AllRows = MaxPictureSide;

void YCC_To_RGB24(const JdecPlanes* planes, JdecRaster* raster) {
  Convert_Rows(PixelRgb24, planes, raster, RasterRead, 0, AllRows);
}
void YCC_To_RGB32(const JdecPlanes* planes, JdecRaster* raster) {
  Convert_Rows(PixelRgb32, planes, raster, RasterRead, 0, AllRows);
}
void YCC_To_RGB565(const JdecPlanes* planes, JdecRaster* raster) {
  Convert_Rows(PixelRgb565, planes, raster, RasterRead, 0, AllRows);
}
void YCC_To_RGB555(const JdecPlanes* planes, JdecRaster* raster) {
  Convert_Rows(PixelRgb555, planes, raster, RasterRead, 0, AllRows);
}

void Convert_Plane_Rows(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode, RasterUse use,
                        int32_t first, int32_t count) {
  if (converters[pixelFormat].bitsPerPixel != raster->bitsPerPixel) return;
  if (pixelFormat == PixelPalette8) {
    YCC_To_Palette8_Rows(planes, raster, ditherMode, first, count);
  } else {
    Convert_Rows(pixelFormat, planes, raster, use, first, count);
  }
}

void Convert_Planes(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode) {
  Convert_Plane_Rows(pixelFormat, planes, raster, ditherMode, RasterRead, 0, AllRows);
}
