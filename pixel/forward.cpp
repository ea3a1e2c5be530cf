#include "pixel/forward.h"

#include "kernels/kernels.h"
#include "pixel/color_tables.h"

#include <cstring>

void RGB_To_YCC444(const JdecRaster* raster, JdecPlanes* planes) {
  for (int32_t i = 0; i < raster->height; ++i) {
    kernels.toYccRow(rgbYccTable, raster->rows[i], planes->yRows[i], planes->cbRows[i], planes->crRows[i], raster->width);
  }
}

void Downsample_Planes(const JdecPlanes* source, JdecPlanes* target) {
  Downsample_Plane(target->yRows, source->yRows, source->yWidth, source->yHeight, 4, 4);
  Downsample_Plane(target->crRows, source->crRows, source->crWidth, source->crHeight, 4, 1);
  Downsample_Plane(target->cbRows, source->cbRows, source->cbWidth, source->cbHeight, 4, 1);
}

void Downsample_Plane(uint8_t** target, uint8_t* const* source, int32_t width, int32_t height, int32_t lumaFactor,
                      int32_t chromaFactor) {
  if (lumaFactor / chromaFactor != 4) {
    for (int32_t i = 0; i < height; ++i) std::memcpy(target[i], source[i], static_cast<size_t>(width));
    return;
  }
  // The bias alternates between 1 and 2 down each column and on into the next one: with an odd number of rows, odd columns begin
  // with 2.
  const int32_t rows = height / 2;
  for (int32_t r = 0; r < rows; ++r) {
    const int32_t evenBias = 1 + r % 2;
    const int32_t oddBias = rows % 2 ? 3 - evenBias : evenBias;
    kernels.downsampleRow(source[2 * r], source[2 * r + 1], target[r], width / 2, evenBias, oddBias);
  }
}

void Forward_DCT_Plane(uint8_t** rows, int32_t** plane, int32_t width, int32_t height, const int16_t* forward,
                       const int16_t* inverse) {
  for (int32_t r = 0; r < height / 8; ++r) {
    kernels.forwardRow(rows + static_cast<size_t>(r) * 8, width / 8, forward, inverse, plane[r]);
  }
}
