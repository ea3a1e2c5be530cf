/* The packed form of the inverse transform: the data flow of idct_plain.cpp in lanes of 16 bits. Sums wrap at 16 bits. A product
 * with a constant is a sum of two products in 32 bits, shifted right by 8 and saturated; the second product is the term that the
 * plain form adds afterwards, so that the last place can differ. There are no zero tests. */
#include "kernels/kernels.h"

static int32_t Saturate16(int32_t x) { return x < -32768 ? -32768 : x > 32767 ? 32767 : x; }

static int16_t Wrap16(int32_t x) { return (int16_t)(uint16_t)(uint32_t)x; }

/** (x * c + y * d) >> 8 in 16 bits. The sum fits 32 bits: |c| + |d| is below 2048 and both factors are 16-bit values. */
static int16_t Multiply_Pair(int16_t x, int32_t c, int16_t y, int32_t d) { return (int16_t)Saturate16((x * c + y * d) >> 8); }

static void Butterfly(int16_t* v) {
  const int16_t u0 = Wrap16(v[0] + v[4]), u1 = Wrap16(v[0] - v[4]), u3 = Wrap16(v[2] + v[6]);
  const int16_t u2 = Multiply_Pair(Wrap16(v[2] - v[6]), 362, u3, -256);
  const int16_t e0 = Wrap16(u0 + u3), e3 = Wrap16(u0 - u3), e1 = Wrap16(u1 + u2), e2 = Wrap16(u1 - u2);

  const int16_t z13 = Wrap16(v[5] + v[3]), z10 = Wrap16(v[5] - v[3]), z11 = Wrap16(v[1] + v[7]), z12 = Wrap16(v[1] - v[7]);
  const int16_t sum = Wrap16(z10 + z12);
  const int16_t o7 = Wrap16(z11 + z13);
  const int16_t q10 = Multiply_Pair(z12, 277, sum, -473);
  const int16_t q12 = Multiply_Pair(z10, -669, sum, 473);
  const int16_t o6 = Wrap16(q12 - o7);
  const int16_t o5 = Multiply_Pair(Wrap16(z11 - z13), 362, o6, -256);
  const int16_t o4 = Wrap16(q10 + o5);

  v[0] = Wrap16(e0 + o7), v[1] = Wrap16(e1 + o6), v[2] = Wrap16(e2 + o5), v[3] = Wrap16(e3 - o4);
  v[4] = Wrap16(e3 + o4), v[5] = Wrap16(e2 - o5), v[6] = Wrap16(e1 - o6), v[7] = Wrap16(e0 - o7);
}

static uint8_t Sample(int16_t x) {
  const int32_t y = Saturate16((x >> 6) + 128);
  return (uint8_t)(y < 0 ? 0 : y > 255 ? 255 : y);
}

static void IDCT_Block_Packed(const int32_t* block, const int16_t* table, uint8_t* const* rows, int32_t left) {
  int16_t work[64];
  for (int32_t k = 0; k < 8; ++k) {
    int16_t v[8];
    for (int32_t j = 0; j < 8; ++j) v[j] = Wrap16(Saturate16(block[8 * j + k]) * table[8 * j + k]);
    Butterfly(v);
    for (int32_t j = 0; j < 8; ++j) work[8 * j + k] = v[j];
  }
  for (int32_t j = 0; j < 8; ++j) {
    Butterfly(work + 8 * j);
    for (int32_t k = 0; k < 8; ++k) rows[j][left + k] = Sample(work[8 * j + k]);
  }
}

void Idct_Row_Packed_Plain(const int32_t* blocks, int32_t count, const int16_t* table, const uint8_t*, uint8_t* const* rows) {
  for (int32_t i = 0; i < count; ++i) IDCT_Block_Packed(blocks + (ptrdiff_t)64 * i, table, rows, 8 * i);
}
