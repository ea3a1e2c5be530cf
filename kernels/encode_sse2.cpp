/* One block in a vector. */
#include "kernels/kernels.h"
#include "kernels/vector_sse2_body.h"

/** Each word of the four vectors holds samples of two columns side by side. */
static inline void Split_Columns(const int16_t (*from)[Lanes][8], Vector* sums, Vector* differences) {
  Vector x[8];
  for (int i = 0; i < 4; ++i) {
    const Vector two = Load_Aligned(from[i]);
    x[2 * i] = two & Broadcast_16(0xFF);
    x[2 * i + 1] = Shift_Right_Unsigned_16(two, 8);
  }
  for (int i = 0; i < 4; ++i) {
    sums[i] = Add_16(x[i], x[7 - i]);
    differences[i] = Subtract_16(x[i], x[7 - i]);
  }
}

static inline int32_t Count_Bits(uint64_t mask) {
  mask -= mask >> 1 & 0x5555555555555555;
  mask = (mask & 0x3333333333333333) + (mask >> 2 & 0x3333333333333333);
  return (int32_t)(((mask + (mask >> 4)) & 0x0F0F0F0F0F0F0F0F) * 0x0101010101010101 >> 56);
}

/** 64 where there is none. */
static inline uint64_t Lowest_Bit(uint64_t mask) { return mask ? (uint64_t)__builtin_ctzll(mask) : 64; }

static inline uint64_t Byte_Index(uint64_t position);

#include "kernels/encode_body.h"

static inline uint64_t Byte_Index(uint64_t position) { return scanOrder[position]; }

/** which: 0 to 3 for luma, 4 for Cb, 5 for Cr. */
static void Load_Set(const EncodeSource* source, ptrdiff_t left, int32_t which, BlockSet* set) {
  uint8_t* const* const rows = which < 4 ? source->y + which / 2 * 8 : which == 4 ? source->cb : source->cr;
  left = which < 4 ? left + which % 2 * 8 : left / 2;
  Vector a[4];
  for (int i = 0; i < 4; ++i) a[i] = Interleave_Low_16(Load_Halves(rows[2 * i] + left), Load_Halves(rows[2 * i + 1] + left));
  Store_Columns(a[0], a[1], a[2], a[3], set);
}

/** The bytes stay in natural order. */
static void Sort_Coefficients(const HuffEncodeTables* tables, BlockSet* set) {
  uint64_t nonZero = 0;
  for (int i = 0; i < 4; ++i) {
    const Vector bytes = Pack_Saturate_16(Load_Aligned(set->words[2 * i]), Load_Aligned(set->words[2 * i + 1]));
    Store(set->bytes[0] + 16 * i, bytes);
    const uint32_t mask = ~Top_Bits_8(Equal_8(bytes, Broadcast_8(0)));
    nonZero |= tables->scanMasks[2 * i][mask & 0xFF] | tables->scanMasks[2 * i + 1][mask >> 8 & 0xFF];
  }
  set->nonZero[0] = nonZero;
}

void Use_Encode_Sse2(Kernels* record) { record->encodeRow = Encode_Units; }
