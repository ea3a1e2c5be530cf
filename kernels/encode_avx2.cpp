/* Two blocks in a vector: neighbours in luma, or Cb with Cr. */
#include "kernels/kernels.h"

#include <immintrin.h>

enum { Lanes = 2 };
static const ptrdiff_t CopyWidth = 32;
typedef __m256i Words;

static inline Words Load_Words(const void* from) { return _mm256_load_si256((const __m256i*)from); }
static inline void Store_Words(void* to, Words words) { _mm256_store_si256((__m256i*)to, words); }
static inline Words Same_Row(const int16_t* row) { return _mm256_broadcastsi128_si256(_mm_loadu_si128((const __m128i*)row)); }
static inline Words All(int number) { return _mm256_set1_epi16((int16_t)number); }

static inline Words Add(Words a, Words b) { return _mm256_add_epi16(a, b); }
static inline Words Sub(Words a, Words b) { return _mm256_sub_epi16(a, b); }
static inline Words High_Product(Words a, Words b) { return _mm256_mulhi_epi16(a, b); }
static inline Words Low_Product(Words a, Words b) { return _mm256_mullo_epi16(a, b); }
static inline Words Top_Bit(Words a) { return _mm256_srli_epi16(a, 15); }
static inline Words Halved(Words a) { return _mm256_srai_epi16(a, 1); }
static inline Words Size_Of(Words a) { return _mm256_abs_epi16(a); }
static inline Words With_Sign(Words size, Words a) { return _mm256_sign_epi16(size, a); }
static inline Words Zero_Below(Words a, Words size, Words least) {
  return _mm256_andnot_si256(_mm256_cmpgt_epi16(least, size), a);
}

static inline void Transpose(const Words* x, int16_t (*to)[Lanes][8]) {
  const Words a0 = _mm256_unpacklo_epi16(x[0], x[1]), a1 = _mm256_unpackhi_epi16(x[0], x[1]);
  const Words a2 = _mm256_unpacklo_epi16(x[2], x[3]), a3 = _mm256_unpackhi_epi16(x[2], x[3]);
  const Words a4 = _mm256_unpacklo_epi16(x[4], x[5]), a5 = _mm256_unpackhi_epi16(x[4], x[5]);
  const Words a6 = _mm256_unpacklo_epi16(x[6], x[7]), a7 = _mm256_unpackhi_epi16(x[6], x[7]);
  const Words b0 = _mm256_unpacklo_epi32(a0, a2), b1 = _mm256_unpackhi_epi32(a0, a2);
  const Words b2 = _mm256_unpacklo_epi32(a1, a3), b3 = _mm256_unpackhi_epi32(a1, a3);
  const Words b4 = _mm256_unpacklo_epi32(a4, a6), b5 = _mm256_unpackhi_epi32(a4, a6);
  const Words b6 = _mm256_unpacklo_epi32(a5, a7), b7 = _mm256_unpackhi_epi32(a5, a7);
  Store_Words(to[0], _mm256_unpacklo_epi64(b0, b4));
  Store_Words(to[1], _mm256_unpackhi_epi64(b0, b4));
  Store_Words(to[2], _mm256_unpacklo_epi64(b1, b5));
  Store_Words(to[3], _mm256_unpackhi_epi64(b1, b5));
  Store_Words(to[4], _mm256_unpacklo_epi64(b2, b6));
  Store_Words(to[5], _mm256_unpackhi_epi64(b2, b6));
  Store_Words(to[6], _mm256_unpacklo_epi64(b3, b7));
  Store_Words(to[7], _mm256_unpackhi_epi64(b3, b7));
}

/** Each word of the four vectors holds a sample of a column and the one opposite. */
static inline void Split_Columns(const int16_t (*from)[Lanes][8], Words* sums, Words* differences) {
  for (int i = 0; i < 4; ++i) {
    const Words opposite = Load_Words(from[i]);
    sums[i] = _mm256_maddubs_epi16(opposite, All(0x0101));
    differences[i] = _mm256_maddubs_epi16(opposite, All(0xFF01));
  }
}

static inline int32_t Count_Bits(uint64_t mask) { return __builtin_popcountll(mask); }

/** 64 where there is none. */
static inline uint64_t Lowest_Bit(uint64_t mask) {
#ifdef __x86_64__
  return _tzcnt_u64(mask);
#else
  return mask ? (uint64_t)__builtin_ctzll(mask) : 64;
#endif
}

static inline uint64_t Byte_Index(uint64_t position) { return position; }

static inline uint32_t Copy_And_Find(const uint8_t* from, uint8_t* to) {
  const __m256i bytes = _mm256_loadu_si256((const __m256i*)from);
  _mm256_storeu_si256((__m256i*)to, bytes);
  return (uint32_t)_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(-1)));
}

#include "kernels/encode_body.h"

static inline __m256i Lanes_Of(__m128i low, __m128i high) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

/** Rows i and i + 4 of two neighbours, those of the left one first. */
static inline __m256i Load_Neighbours(uint8_t* const* rows, ptrdiff_t left) {
  const __m128i* const upper = (const __m128i*)(rows[0] + left);
  const __m128i* const lower = (const __m128i*)(rows[4] + left);
  return _mm256_permute4x64_epi64(Lanes_Of(_mm_loadu_si128(upper), _mm_loadu_si128(lower)), 0xD8);
}

static inline __m128i Load_Two(uint8_t* const* rows, ptrdiff_t left) {
  const __m128i upper = _mm_loadl_epi64((const __m128i*)(rows[0] + left));
  return _mm_unpacklo_epi64(upper, _mm_loadl_epi64((const __m128i*)(rows[4] + left)));
}

/** which: 0 and 1 for upper and lower luma, 2 for chroma. */
static void Load_Set(const EncodeSource* source, ptrdiff_t left, int32_t which, BlockSet* set) {
  const __m256i opposites = _mm256_setr_epi8(0, 7, 1, 6, 2, 5, 3, 4, 8, 15, 9, 14, 10, 13, 11, 12,  //
                                             0, 7, 1, 6, 2, 5, 3, 4, 8, 15, 9, 14, 10, 13, 11, 12);
  Words r[4];
  for (int i = 0; i < 4; ++i) {
    const __m256i rows = which < 2 ? Load_Neighbours(source->y + 8 * which + i, left)
                                   : Lanes_Of(Load_Two(source->cb + i, left / 2), Load_Two(source->cr + i, left / 2));
    r[i] = _mm256_shuffle_epi8(rows, opposites);
  }
  const Words a0 = _mm256_unpacklo_epi16(r[0], r[1]), a1 = _mm256_unpacklo_epi16(r[2], r[3]);
  const Words a2 = _mm256_unpackhi_epi16(r[0], r[1]), a3 = _mm256_unpackhi_epi16(r[2], r[3]);
  const Words b0 = _mm256_unpacklo_epi32(a0, a1), b1 = _mm256_unpackhi_epi32(a0, a1);
  const Words b2 = _mm256_unpacklo_epi32(a2, a3), b3 = _mm256_unpackhi_epi32(a2, a3);
  Store_Words(set->words[0], _mm256_unpacklo_epi64(b0, b2));
  Store_Words(set->words[1], _mm256_unpackhi_epi64(b0, b2));
  Store_Words(set->words[2], _mm256_unpacklo_epi64(b1, b3));
  Store_Words(set->words[3], _mm256_unpackhi_epi64(b1, b3));
}

static inline void Keep_Bytes(BlockSet* set, int lane, __m256i low, __m256i high) {
  _mm256_storeu_si256((__m256i*)set->bytes[lane], low);
  _mm256_storeu_si256((__m256i*)(set->bytes[lane] + 32), high);
  const uint32_t lowZeros = (uint32_t)_mm256_movemask_epi8(_mm256_cmpeq_epi8(low, _mm256_setzero_si256()));
  const uint32_t highZeros = (uint32_t)_mm256_movemask_epi8(_mm256_cmpeq_epi8(high, _mm256_setzero_si256()));
  set->nonZero[lane] = ~((uint64_t)highZeros << 32 | lowZeros);
}

#define PICK(bytes, ...) _mm256_shuffle_epi8(bytes, _mm256_setr_epi8(__VA_ARGS__, __VA_ARGS__))
#define OR(a, b) _mm256_or_si256(a, b)

/** Levels as bytes, brought to scan order: each 16 of them come from up to four pairs of rows. */
static void Sort_Levels(const HuffEncodeTables* tables, BlockSet* set) {
  (void)tables;
  enum { N = -1 };
  __m256i p[4];
  for (int i = 0; i < 4; ++i) p[i] = _mm256_packs_epi16(Load_Words(set->words[2 * i]), Load_Words(set->words[2 * i + 1]));
  const __m256i s0 = OR(OR(PICK(p[0], 0, 1, 8, N, 9, 2, 3, 10, N, N, N, N, N, 11, 4, 5),
                           PICK(p[1], N, N, N, 0, N, N, N, N, 1, 8, N, 9, 2, N, N, N)),
                        PICK(p[2], N, N, N, N, N, N, N, N, N, N, 0, N, N, N, N, N));
  const __m256i s1 = OR(
      OR(PICK(p[0], 12, N, N, N, N, N, N, N, N, N, 13, 6, 7, 14, N, N),
         PICK(p[1], N, 3, 10, N, N, N, N, N, 11, 4, N, N, N, N, 5, 12)),
      OR(PICK(p[2], N, N, N, 1, 8, N, 9, 2, N, N, N, N, N, N, N, N), PICK(p[3], N, N, N, N, N, 0, N, N, N, N, N, N, N, N, N, N)));
  const __m256i s2 = OR(OR(PICK(p[0], N, N, N, N, N, N, N, N, N, N, 15, N, N, N, N, N),
                           PICK(p[1], N, N, N, N, N, N, N, N, 13, 6, N, 7, 14, N, N, N)),
                        OR(PICK(p[2], 3, 10, N, N, N, N, 11, 4, N, N, N, N, N, 5, 12, N),
                           PICK(p[3], N, N, 1, 8, 9, 2, N, N, N, N, N, N, N, N, N, 3)));
  const __m256i s3 = OR(OR(PICK(p[1], N, N, N, N, N, 15, N, N, N, N, N, N, N, N, N, N),
                           PICK(p[2], N, N, N, 13, 6, N, 7, 14, N, N, N, N, 15, N, N, N)),
                        PICK(p[3], 10, 11, 4, N, N, N, N, N, 5, 12, 13, 6, N, 7, 14, 15));
  Keep_Bytes(set, 0, _mm256_permute2x128_si256(s0, s1, 0x20), _mm256_permute2x128_si256(s2, s3, 0x20));
  Keep_Bytes(set, 1, _mm256_permute2x128_si256(s0, s1, 0x31), _mm256_permute2x128_si256(s2, s3, 0x31));
}

void Use_Encode_Avx2(Kernels* record) { record->encodeRow = Encode_Units; }
