/* Inverse transform, the rule: the scaled 8-point transform of Arai, Agui and Nakajima with five multiplications a pass. Its
 * scale factors are part of the dequantisation table. Columns first, then rows.
 *
 * All arithmetic has 32 bits and wraps, so that coefficients that no encoder writes have a defined result too; hence the unsigned
 * words. The tables have 3 fractional bits, the passes add 3: the final shift is 6. */
#include "kernels/kernels.h"

/** The constants, in 8 fractional bits: sqrt(2), 2 cos(pi/8), and the two differences that the odd part needs. */
static const uint32_t C362 = 362, C473 = 473, C277 = 277;
static const uint32_t CMinus669 = (uint32_t)-669;

/** x * c without the 8 fractional bits of c, rounded towards minus infinity. */
static uint32_t Multiply(uint32_t x, uint32_t c) { return (uint32_t)((int32_t)(x * c) >> 8); }

/** One 8-point pass in place: v[0] to v[7] in natural order, in and out. */
static void Butterfly(uint32_t* v) {
  const uint32_t u0 = v[0] + v[4], u1 = v[0] - v[4], u3 = v[2] + v[6];
  const uint32_t u2 = Multiply(v[2] - v[6], C362) - u3;
  const uint32_t e0 = u0 + u3, e3 = u0 - u3, e1 = u1 + u2, e2 = u1 - u2;

  const uint32_t z13 = v[5] + v[3], z10 = v[5] - v[3], z11 = v[1] + v[7], z12 = v[1] - v[7];
  const uint32_t o7 = z11 + z13;
  const uint32_t q11 = Multiply(z11 - z13, C362);
  const uint32_t z5 = Multiply(z10 + z12, C473);
  const uint32_t q10 = Multiply(z12, C277) - z5;
  const uint32_t q12 = Multiply(z10, CMinus669) + z5;
  const uint32_t o6 = q12 - o7, o5 = q11 - o6, o4 = q10 + o5;

  v[0] = e0 + o7, v[1] = e1 + o6, v[2] = e2 + o5, v[3] = e3 - o4;
  v[4] = e3 + o4, v[5] = e2 - o5, v[6] = e1 - o6, v[7] = e0 - o7;
}

/** Level shift and clamp. Values far outside wrap at 10 bits. */
static uint8_t Sample(uint32_t x, const uint8_t* rangeLimit) { return rangeLimit[(((int32_t)x >> 6) + 128) & 0x3FF]; }

static void IDCT_Block(const int32_t* block, const int16_t* table, const uint8_t* rangeLimit, uint8_t* const* rows,
                       int32_t left) {
  uint32_t work[64];
  for (int32_t k = 0; k < 8; ++k) {
    uint32_t v[8];
    int32_t others = 0;
    for (int32_t j = 0; j < 8; ++j) v[j] = (uint32_t)block[8 * j + k] * (uint32_t)table[8 * j + k];
    for (int32_t j = 1; j < 8; ++j) others |= block[8 * j + k];
    if (others != 0) {
      Butterfly(v);
    } else {
      for (int32_t j = 1; j < 8; ++j) v[j] = v[0];
    }
    for (int32_t j = 0; j < 8; ++j) work[8 * j + k] = v[j];
  }
  for (int32_t j = 0; j < 8; ++j) {
    uint32_t* const w = work + 8 * j;
    uint8_t* const out = rows[j] + left;
    if ((w[1] | w[2] | w[3] | w[4] | w[5] | w[6] | w[7]) == 0) {
      for (int32_t k = 1; k < 8; ++k) w[k] = w[0];
    } else {
      Butterfly(w);
    }
    for (int32_t k = 0; k < 8; ++k) out[k] = Sample(w[k], rangeLimit);
  }
}

void Idct_Row_Plain(const int32_t* blocks, int32_t count, const int16_t* table, const uint8_t* rangeLimit, uint8_t* const* rows) {
  for (int32_t i = 0; i < count; ++i) IDCT_Block(blocks + (ptrdiff_t)64 * i, table, rangeLimit, rows, 8 * i);
}
