/* One block in a vector. */
#include "kernels/kernels.h"

#include <emmintrin.h>

enum { Lanes = 1 };
static const ptrdiff_t CopyWidth = 16;
typedef __m128i Words;

static inline Words Load_Words(const void* from) { return _mm_load_si128((const __m128i*)from); }
static inline void Store_Words(void* to, Words words) { _mm_store_si128((__m128i*)to, words); }
static inline Words Same_Row(const int16_t* row) { return _mm_loadu_si128((const __m128i*)row); }
static inline Words All(int number) { return _mm_set1_epi16((int16_t)number); }

static inline Words Add(Words a, Words b) { return _mm_add_epi16(a, b); }
static inline Words Sub(Words a, Words b) { return _mm_sub_epi16(a, b); }
static inline Words High_Product(Words a, Words b) { return _mm_mulhi_epi16(a, b); }
static inline Words Low_Product(Words a, Words b) { return _mm_mullo_epi16(a, b); }
static inline Words Top_Bit(Words a) { return _mm_srli_epi16(a, 15); }
static inline Words Halved(Words a) { return _mm_srai_epi16(a, 1); }
static inline Words Size_Of(Words a) { return _mm_max_epi16(a, _mm_sub_epi16(_mm_setzero_si128(), a)); }
static inline Words With_Sign(Words size, Words a) {
  const __m128i negative = _mm_srai_epi16(a, 15);
  return _mm_sub_epi16(_mm_xor_si128(size, negative), negative);
}
static inline Words Zero_Below(Words a, Words size, Words least) { return _mm_andnot_si128(_mm_cmpgt_epi16(least, size), a); }

static inline void Transpose(const Words* x, int16_t (*to)[Lanes][8]) {
  const Words a0 = _mm_unpacklo_epi16(x[0], x[1]), a1 = _mm_unpackhi_epi16(x[0], x[1]);
  const Words a2 = _mm_unpacklo_epi16(x[2], x[3]), a3 = _mm_unpackhi_epi16(x[2], x[3]);
  const Words a4 = _mm_unpacklo_epi16(x[4], x[5]), a5 = _mm_unpackhi_epi16(x[4], x[5]);
  const Words a6 = _mm_unpacklo_epi16(x[6], x[7]), a7 = _mm_unpackhi_epi16(x[6], x[7]);
  const Words b0 = _mm_unpacklo_epi32(a0, a2), b1 = _mm_unpackhi_epi32(a0, a2);
  const Words b2 = _mm_unpacklo_epi32(a1, a3), b3 = _mm_unpackhi_epi32(a1, a3);
  const Words b4 = _mm_unpacklo_epi32(a4, a6), b5 = _mm_unpackhi_epi32(a4, a6);
  const Words b6 = _mm_unpacklo_epi32(a5, a7), b7 = _mm_unpackhi_epi32(a5, a7);
  Store_Words(to[0], _mm_unpacklo_epi64(b0, b4));
  Store_Words(to[1], _mm_unpackhi_epi64(b0, b4));
  Store_Words(to[2], _mm_unpacklo_epi64(b1, b5));
  Store_Words(to[3], _mm_unpackhi_epi64(b1, b5));
  Store_Words(to[4], _mm_unpacklo_epi64(b2, b6));
  Store_Words(to[5], _mm_unpackhi_epi64(b2, b6));
  Store_Words(to[6], _mm_unpacklo_epi64(b3, b7));
  Store_Words(to[7], _mm_unpackhi_epi64(b3, b7));
}

/** Each word of the four vectors holds samples of two columns side by side. */
static inline void Split_Columns(const int16_t (*from)[Lanes][8], Words* sums, Words* differences) {
  Words x[8];
  for (int i = 0; i < 4; ++i) {
    const Words two = Load_Words(from[i]);
    x[2 * i] = _mm_and_si128(two, All(0xFF));
    x[2 * i + 1] = _mm_srli_epi16(two, 8);
  }
  for (int i = 0; i < 4; ++i) {
    sums[i] = Add(x[i], x[7 - i]);
    differences[i] = Sub(x[i], x[7 - i]);
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

static inline uint32_t Copy_And_Find(const uint8_t* from, uint8_t* to) {
  const __m128i bytes = _mm_loadu_si128((const __m128i*)from);
  _mm_storeu_si128((__m128i*)to, bytes);
  return (uint32_t)_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(-1)));
}

#include "kernels/encode_body.h"

static inline uint64_t Byte_Index(uint64_t position) { return scanOrder[position]; }

/** which: 0 to 3 for luma, 4 for Cb, 5 for Cr. */
static void Load_Set(const EncodeSource* source, ptrdiff_t left, int32_t which, BlockSet* set) {
  uint8_t* const* const rows = which < 4 ? source->y + which / 2 * 8 : which == 4 ? source->cb : source->cr;
  left = which < 4 ? left + which % 2 * 8 : left / 2;
  __m128i a[4];
  for (int i = 0; i < 4; ++i) {
    a[i] = _mm_unpacklo_epi16(_mm_loadl_epi64((const __m128i*)(rows[2 * i] + left)),
                              _mm_loadl_epi64((const __m128i*)(rows[2 * i + 1] + left)));
  }
  const __m128i b0 = _mm_unpacklo_epi32(a[0], a[1]), b1 = _mm_unpackhi_epi32(a[0], a[1]);
  const __m128i b2 = _mm_unpacklo_epi32(a[2], a[3]), b3 = _mm_unpackhi_epi32(a[2], a[3]);
  Store_Words(set->words[0], _mm_unpacklo_epi64(b0, b2));
  Store_Words(set->words[1], _mm_unpackhi_epi64(b0, b2));
  Store_Words(set->words[2], _mm_unpacklo_epi64(b1, b3));
  Store_Words(set->words[3], _mm_unpackhi_epi64(b1, b3));
}

/** The bytes stay in natural order. */
static void Sort_Levels(const HuffEncodeTables* tables, BlockSet* set) {
  uint64_t nonZero = 0;
  for (int i = 0; i < 4; ++i) {
    const __m128i bytes = _mm_packs_epi16(Load_Words(set->words[2 * i]), Load_Words(set->words[2 * i + 1]));
    _mm_storeu_si128((__m128i*)(set->bytes[0] + 16 * i), bytes);
    const int mask = ~_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128()));
    nonZero |= tables->scanMasks[2 * i][mask & 0xFF] | tables->scanMasks[2 * i + 1][mask >> 8 & 0xFF];
  }
  set->nonZero[0] = nonZero;
}

void Use_Encode_Sse2(Kernels* record) { record->encodeRow = Encode_Units; }
