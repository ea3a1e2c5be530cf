/* Dithering to palette indices, the rule. */
#include "kernels/kernels.h"

void Dither_Row_Plain(const DitherTables* tables, const uint8_t* y, const uint8_t* cb, const uint8_t* cr,
                      const uint8_t* matrixRow, uint8_t* out, int32_t pairs) {
  for (int32_t i = 0; i < pairs; ++i) {
    const uint8_t* const dither = matrixRow + 2 * (i % 2);
    const int32_t u = cb[i] >> 1, v = cr[i] >> 1;
    for (int32_t x = 0; x < 2; ++x) {
      const int32_t m = dither[x];
      out[2 * i + x] = (uint8_t)(tables->y[y[2 * i + x] + m] | tables->cb[u + m] | tables->cr[v + m]);
    }
  }
}
