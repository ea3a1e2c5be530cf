#include "pixel/convert.h"

#include "kernels/kernels.h"
#include "pixel/color_tables.h"
#include "pixel/dither.h"

static void Convert_Rows(const JdecPlanes* planes, JdecRaster* raster, ConvertRowsKernel convert) {
  const ColorTables tables = {rangeLimit, yccRgbTable};
  const int32_t pairs = planes->yWidth / 2;
  for (int32_t r = 0; r < planes->yHeight / 2; ++r) {
    convert(&tables, planes->yRows[2 * r], planes->yRows[2 * r + 1], planes->cbRows[r], planes->crRows[r], raster->rows[2 * r],
            raster->rows[2 * r + 1], pairs);
  }
}

void YCC_To_RGB24(const JdecPlanes* planes, JdecRaster* raster) { Convert_Rows(planes, raster, kernels.toRgb24); }
void YCC_To_RGB32(const JdecPlanes* planes, JdecRaster* raster) { Convert_Rows(planes, raster, kernels.toRgb32); }
void YCC_To_RGB565(const JdecPlanes* planes, JdecRaster* raster) { Convert_Rows(planes, raster, kernels.toRgb565); }
void YCC_To_RGB555(const JdecPlanes* planes, JdecRaster* raster) { Convert_Rows(planes, raster, kernels.toRgb555); }

void Convert_Planes(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode) {
  if (pixelFormat == PixelPalette8) {
    if (raster->bitsPerPixel == 8) YCC_To_Palette8(planes, raster, ditherMode);
    return;
  }
  struct Converter {
    int32_t bitsPerPixel;
    void (*convert)(const JdecPlanes*, JdecRaster*);
  };
  static constexpr Converter converters[] = {
      {8, nullptr}, {16, YCC_To_RGB555}, {16, YCC_To_RGB565}, {24, YCC_To_RGB24}, {32, YCC_To_RGB32}};
  const Converter& converter = converters[pixelFormat];
  if (converter.bitsPerPixel == raster->bitsPerPixel) converter.convert(planes, raster);
}
