/* One block at a time. */
#include "kernels/kernels.h"
#include "kernels/vector_sse2_body.h"

/** Does the sum of four double words pass the limit? */
static int32_t Exceeds(Vector sum, int32_t limit) {
  sum = Add_32(sum, _mm_shuffle_epi32(sum, 0x4E));
  sum = Add_32(sum, _mm_shuffle_epi32(sum, 0xB1));
  return _mm_cvtsi128_si32(sum) > limit;
}

#include "kernels/strip_transform_body.h"

/* Blocks that 16 bits are too few for: the transform in 32, half a row a vector. */

static void Wide_Butterfly(Vector* v) { Butterfly<DoubleWordPass>(v); }

static void Wide_Transpose(Vector* left, Vector* right) {
  Vector a[8], b[8];
  Transpose_32(left[0], left[1], left[2], left[3], a);
  Transpose_32(left[4], left[5], left[6], left[7], b);
  Transpose_32(right[0], right[1], right[2], right[3], a + 4);
  Transpose_32(right[4], right[5], right[6], right[7], b + 4);
  for (int32_t i = 0; i < 8; ++i) left[i] = a[i], right[i] = b[i];
}

__attribute__((noinline)) static void Wide_Block(const int16_t* block, int32_t dc, const StripQuant* quant, uint8_t* const* rows,
                                                 int32_t left) {
  Vector low[8], high[8];
  for (int32_t i = 0; i < 8; ++i) {
    const Vector words = Load(block + 16 * i), factors = Load_Each_Lane(quant->factors + 8 * i);
    const Vector lower = Multiply_Low_16(words, factors), upper = Multiply_High_16(words, factors);
    low[i] = Interleave_Low_16(lower, upper);
    high[i] = Interleave_High_16(lower, upper);
  }
  // DC needs more than a word.
  const uint32_t first = (uint32_t)dc * (uint32_t)(int32_t)quant->factors[0];
  low[0] = (low[0] & _mm_setr_epi32(0, -1, -1, -1)) | _mm_cvtsi32_si128((int32_t)first);
  for (int32_t pass = 0; pass < 2; ++pass) {
    Wide_Butterfly(low);
    Wide_Butterfly(high);
    Wide_Transpose(low, high);
  }
  for (int32_t i = 0; i < 8; ++i) {
    const Vector a = Shift_Right_32(Shift_Left_32(low[i], 16), 22), b = Shift_Right_32(Shift_Left_32(high[i], 16), 22);
    const Vector words = Pack_Saturate_32(a, b);
    Store_Low_Half(rows[i] + left, Pack_Saturate_16(words, words) ^ Broadcast_8(0x80));
  }
}

static void Clear(int16_t* block, int32_t rows) {
  for (int32_t i = 0; i < rows; ++i) Store(block + 16 * i, Broadcast_16(0));
}

static void Put(const Vector* out, uint8_t* const* rows, int32_t left) {
  for (int32_t i = 0; i < 4; ++i) {
    Store_Low_Half(rows[2 * i] + left, out[i]);
    Store_High_Half(rows[2 * i + 1] + left, out[i]);
  }
}

static void Flat_Block(int16_t* block, int32_t dc, const StripQuant* quant, uint8_t* const* rows, int32_t left) {
  const Vector flat = Broadcast_8(Flat_Sample(dc, quant->factors[0]));
  for (int32_t i = 0; i < 8; ++i) Store_Low_Half(rows[i] + left, flat);
  Clear(block, 1);
}

static void Narrow_Block(int16_t* block, const StripQuant* quant, uint8_t* const* rows, int32_t left) {
  Vector out[4];
  Transform_Narrow(block, quant, out);
  Put(out, rows, left);
  Clear(block, 4);
}

static void Full_Block(int16_t* block, const StripQuant* quant, uint8_t* const* rows, int32_t left) {
  Vector out[4];
  Transform_Full(block, quant, out);
  Put(out, rows, left);
  Clear(block, 8);
}

static void Transform_Block(int16_t* block, StripProgress progress, int32_t dc, const StripQuant* quant, uint8_t* const* rows,
                            int32_t left) {
  const int32_t positions = progress & 0xFF, sizes = (int32_t)(progress >> StripSizeShift);
  if (positions <= 1) {
    Flat_Block(block, dc, quant, rows, left);
  } else if (positions <= StripNarrow && sizes <= quant->narrowLimit) {
    Narrow_Block(block, quant, rows, left);
  } else if ((positions <= StripMiddle && sizes <= quant->middleLimit) || Fits(block, quant)) {
    Full_Block(block, quant, rows, left);
  } else {
    Wide_Block(block, dc, quant, rows, left);
    Clear(block, 8);
  }
}

static void Transform_Strip(int16_t* blocks, const StripReach* reach, int32_t macroblocks, const StripQuant* luma,
                            const StripQuant* chroma, int32_t* predictors, uint8_t* const* rows) {
  int32_t dc[6 * StripMacroblocks];
  Sum_Dc(blocks, macroblocks, predictors, dc);
  for (int32_t m = 0; m < macroblocks; ++m) {
    for (int32_t i = 0; i < 6; ++i) {
      const int32_t isLuma = i < 4, left = isLuma ? 16 * m + i % 2 * 8 : 8 * m;
      int16_t* const block = blocks + (ptrdiff_t)m * StripMacroblockSize + i / 2 * StripPairSize + i % 2 * 8;
      uint8_t* const* const blockRows = rows + (isLuma ? i / 2 * 8 : 8 * i - 16);
      const int32_t b = 6 * m + i;
      Transform_Block(block, reach->blocks[b], dc[b], isLuma ? luma : chroma, blockRows, left);
    }
  }
}

void Use_Strip_Transform_Sse2(Kernels* record) { record->transformStrip = Transform_Strip; }
