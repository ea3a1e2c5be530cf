/* The encoder up to its coefficients, the rule: B, G, R to luma and chroma, chroma to half size, forward transform with
 * quantisation. The transform is that of Arai, Agui and Nakajima; its gains are part of the divisors. Byte samples can't pass 32
 * bits. */
#include "kernels/kernels.h"

void To_Ycc_Row_Plain(const int32_t* rgbYcc, const uint8_t* pixels, uint8_t* y, uint8_t* cb, uint8_t* cr, int32_t count) {
  const int32_t *const rY = rgbYcc, *const gY = rgbYcc + 256, *const bY = rgbYcc + 512;
  const int32_t *const rCb = rgbYcc + 768, *const gCb = rgbYcc + 1024, *const bCb = rgbYcc + 1280;
  const int32_t *const rCr = bCb, *const gCr = rgbYcc + 1536, *const bCr = rgbYcc + 1792;
  for (int32_t i = 0; i < count; ++i, pixels += 3) {
    const uint8_t b = pixels[0], g = pixels[1], r = pixels[2];
    y[i] = (uint8_t)((bY[b] + gY[g] + rY[r]) >> 16);
    cb[i] = (uint8_t)((bCb[b] + gCb[g] + rCb[r]) >> 16);
    cr[i] = (uint8_t)((bCr[b] + gCr[g] + rCr[r]) >> 16);
  }
}

void Downsample_Row_Plain(const uint8_t* upper, const uint8_t* lower, uint8_t* out, int32_t pairs, int32_t evenBias,
                          int32_t oddBias) {
  for (int32_t c = 0; c < pairs; ++c) {
    const int32_t sum = upper[2 * c] + upper[2 * c + 1] + lower[2 * c] + lower[2 * c + 1];
    out[c] = (uint8_t)((sum + (c % 2 ? oddBias : evenBias)) >> 2);
  }
}

/** One 8-point pass; `shift` is subtracted from each sum of two samples. The constants have 8 fractional bits. */
static void Butterfly(const int32_t* x, int32_t shift, int32_t* y) {
  const int32_t a0 = x[0] + x[7] - shift, a1 = x[1] + x[6] - shift, a2 = x[2] + x[5] - shift, a3 = x[3] + x[4] - shift;
  const int32_t d0 = x[0] - x[7], d1 = x[1] - x[6], d2 = x[2] - x[5], d3 = x[3] - x[4];

  const int32_t e0 = a0 + a3, e3 = a0 - a3, e1 = a1 + a2, e2 = a1 - a2;
  const int32_t z1 = ((e2 + e3) * 181) >> 8;
  y[0] = e0 + e1, y[4] = e0 - e1, y[2] = e3 + z1, y[6] = e3 - z1;

  const int32_t f0 = d3 + d2, f1 = d2 + d1, f2 = d1 + d0;
  const int32_t z5 = ((f0 - f2) * 98) >> 8;
  const int32_t z2 = ((f0 * 139) >> 8) + z5, z4 = ((f2 * 334) >> 8) + z5, z3 = (f1 * 181) >> 8;
  const int32_t g1 = d0 + z3, g3 = d0 - z3;
  y[5] = g3 + z2, y[3] = g3 - z2, y[1] = g1 + z4, y[7] = g1 - z4;
}

/** Multiplies by the reciprocal; values below half the divisor become 0. */
static int32_t Quantise(int32_t value, int32_t reciprocal, int32_t divisor) {
  const int32_t size = value < 0 ? -value : value;
  if (size < divisor >> 1) return 0;
  const int32_t quantised = (size * (reciprocal + 1) + 32768) >> 16;
  return value < 0 ? -quantised : quantised;
}

static void Forward_DCT_Block(uint8_t* const* rows, int32_t left, const int16_t* forward, const int16_t* inverse,
                              int32_t* block) {
  int32_t x[8], y[8];
  for (int32_t v = 0; v < 8; ++v) {
    for (int32_t k = 0; k < 8; ++k) x[k] = rows[v][left + k];
    Butterfly(x, 256, block + 8 * v);
  }
  for (int32_t u = 0; u < 8; ++u) {
    for (int32_t v = 0; v < 8; ++v) x[v] = block[8 * v + u];
    Butterfly(x, 0, y);
    for (int32_t v = 0; v < 8; ++v) block[8 * v + u] = Quantise(y[v], forward[8 * v + u], inverse[8 * v + u]);
  }
}

void Forward_Row_Plain(uint8_t* const* rows, int32_t count, const int16_t* forward, const int16_t* inverse, int32_t* blocks) {
  for (int32_t i = 0; i < count; ++i) Forward_DCT_Block(rows, 8 * i, forward, inverse, blocks + (ptrdiff_t)64 * i);
}
