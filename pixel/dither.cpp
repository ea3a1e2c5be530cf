#include "pixel/dither.h"

#include "kernels/kernels.h"

#include <algorithm>
#include <array>

namespace {

constexpr uint8_t ditherMatrixNormal[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
constexpr uint8_t ditherMatrixShrink[4][4] = {{0, 8, 14, 2}, {12, 4, 6, 10}, {11, 7, 5, 13}, {3, 15, 9, 1}};

/** For each sum of sample and dither value its step, from `least` to `most`, shifted to its place in the palette index. */
template <size_t Size>
constexpr auto Quantiser(int32_t offset, int32_t least, int32_t most, int32_t shift) {
  std::array<uint8_t, Size> table{};
  for (int32_t s = 0; s < static_cast<int32_t>(Size); ++s) {
    table[static_cast<size_t>(s)] = static_cast<uint8_t>(std::clamp((s - offset) >> 4, least, most) << shift);
  }
  return table;
}

constexpr auto yStore = Quantiser<272>(8, 1, 14, 4);
constexpr auto cbStore = Quantiser<144>(40, 0, 3, 2);
constexpr auto crStore = Quantiser<144>(40, 0, 3, 0);

const uint8_t *ditherY, *ditherCb, *ditherCr;

}  // namespace

void Init_Dither_Tables() {
  ditherY = yStore.data();
  ditherCb = cbStore.data();
  ditherCr = crStore.data();
}

static void Dither_Row(const DitherTables& tables, const JdecPlanes* planes, JdecRaster* raster, const uint8_t* matrixRow,
                       int32_t y) {
  const int32_t width = planes->yWidth, pairs = width / 2, chromaRow = std::min(y / 2, planes->cbHeight - 1);
  const uint8_t *const cb = planes->cbRows[chromaRow], *const cr = planes->crRows[chromaRow];
  const uint8_t* const luma = planes->yRows[y];
  kernels.ditherRow(&tables, luma, cb, cr, matrixRow, raster->rows[y], pairs);
  if (width % 2 == 0) return;
  const uint8_t last[2] = {luma[width - 1], luma[width - 1]};
  uint8_t out[2];
  kernels.ditherRow(&tables, last, cb + pairs - 1, cr + pairs - 1, matrixRow + (width - 1) % 4, out, 1);
  raster->rows[y][width - 1] = out[0];
}

void YCC_To_Palette8_Rows(const JdecPlanes* planes, JdecRaster* raster, int32_t mode, int32_t first, int32_t count) {
  if (planes->cbWidth == 0 || planes->cbHeight == 0) return;
  const DitherTables tables = {ditherY, ditherCb, ditherCr};
  const auto& matrix = mode == DitherShrink ? ditherMatrixShrink : ditherMatrixNormal;
  const int32_t endPair = first + std::min(count, (planes->yHeight + 1) / 2 - first);
  const int32_t end = std::min(2 * endPair, planes->yHeight);
  for (int32_t y = 2 * first; y < end; ++y) Dither_Row(tables, planes, raster, matrix[y & 3], y);
}

void YCC_To_Palette8(const JdecPlanes* planes, JdecRaster* raster, int32_t mode) {
  YCC_To_Palette8_Rows(planes, raster, mode, 0, MaxPictureSide);
}
