/* Two blocks in a vector: neighbours in luma, or Cb with Cr. */
#include "kernels/kernels.h"
#include "kernels/vector_avx2_body.h"

/** Each word of the four vectors holds a sample of a column and the one opposite. */
static inline void Split_Columns(const int16_t (*from)[Lanes][8], Vector* sums, Vector* differences) {
  for (int i = 0; i < 4; ++i) {
    const Vector opposite = Load_Aligned(from[i]);
    sums[i] = _mm256_maddubs_epi16(opposite, Broadcast_8(1));
    differences[i] = _mm256_maddubs_epi16(opposite, Broadcast_16(0xFF01));
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

#include "kernels/encode_body.h"

/** Rows i and i + 4 of two neighbours, those of the left one first. */
static inline Vector Load_Neighbours(uint8_t* const* rows, ptrdiff_t left) {
  return Swap_Middle_64(Join_Lanes(Load_Lane(rows[0] + left), Load_Lane(rows[4] + left)));
}

static inline Lane Load_Two(uint8_t* const* rows, ptrdiff_t left) {
  return _mm_unpacklo_epi64(Load_Half_Lane(rows[0] + left), Load_Half_Lane(rows[4] + left));
}

/** which: 0 and 1 for upper and lower luma, 2 for chroma. */
static void Load_Set(const EncodeSource* source, ptrdiff_t left, int32_t which, BlockSet* set) {
  const Vector opposites = Each_Lane(_mm_setr_epi8(0, 7, 1, 6, 2, 5, 3, 4, 8, 15, 9, 14, 10, 13, 11, 12));
  Vector rows[4];
  for (int i = 0; i < 4; ++i) {
    const Vector two = which < 2 ? Load_Neighbours(source->y + 8 * which + i, left)
                                 : Join_Lanes(Load_Two(source->cb + i, left / 2), Load_Two(source->cr + i, left / 2));
    rows[i] = Pick_8(two, opposites);
  }
  Store_Columns(Interleave_Low_16(rows[0], rows[1]), Interleave_Low_16(rows[2], rows[3]), Interleave_High_16(rows[0], rows[1]),
                Interleave_High_16(rows[2], rows[3]), set);
}

static inline void Keep_Bytes(BlockSet* set, int lane, Vector low, Vector high) {
  Store(set->bytes[lane], low);
  Store(set->bytes[lane] + 32, high);
  const uint32_t lowZeros = Top_Bits_8(Equal_8(low, Broadcast_8(0))), highZeros = Top_Bits_8(Equal_8(high, Broadcast_8(0)));
  set->nonZero[lane] = ~((uint64_t)highZeros << 32 | lowZeros);
}

#define PICK(bytes, ...) Pick_8(bytes, _mm256_setr_epi8(__VA_ARGS__, __VA_ARGS__))

/** Coefficients as bytes, brought to scan order: each 16 of them come from up to four pairs of rows. */
static void Sort_Coefficients(const HuffEncodeTables* tables, BlockSet* set) {
  (void)tables;
  enum { N = -1 };
  Vector p[4];
  for (int i = 0; i < 4; ++i) p[i] = Pack_Saturate_16(Load_Aligned(set->words[2 * i]), Load_Aligned(set->words[2 * i + 1]));
  const Vector s0 = PICK(p[0], 0, 1, 8, N, 9, 2, 3, 10, N, N, N, N, N, 11, 4, 5) |
                    PICK(p[1], N, N, N, 0, N, N, N, N, 1, 8, N, 9, 2, N, N, N) |
                    PICK(p[2], N, N, N, N, N, N, N, N, N, N, 0, N, N, N, N, N);
  const Vector s1 =
      (PICK(p[0], 12, N, N, N, N, N, N, N, N, N, 13, 6, 7, 14, N, N) |
       PICK(p[1], N, 3, 10, N, N, N, N, N, 11, 4, N, N, N, N, 5, 12)) |
      (PICK(p[2], N, N, N, 1, 8, N, 9, 2, N, N, N, N, N, N, N, N) | PICK(p[3], N, N, N, N, N, 0, N, N, N, N, N, N, N, N, N, N));
  const Vector s2 = (PICK(p[0], N, N, N, N, N, N, N, N, N, N, 15, N, N, N, N, N) |
                     PICK(p[1], N, N, N, N, N, N, N, N, 13, 6, N, 7, 14, N, N, N)) |
                    (PICK(p[2], 3, 10, N, N, N, N, 11, 4, N, N, N, N, N, 5, 12, N) |
                     PICK(p[3], N, N, 1, 8, 9, 2, N, N, N, N, N, N, N, N, N, 3));
  const Vector s3 = PICK(p[1], N, N, N, N, N, 15, N, N, N, N, N, N, N, N, N, N) |
                    PICK(p[2], N, N, N, 13, 6, N, 7, 14, N, N, N, N, 15, N, N, N) |
                    PICK(p[3], 10, 11, 4, N, N, N, N, N, 5, 12, 13, 6, N, 7, 14, 15);
  Keep_Bytes(set, 0, _mm256_permute2x128_si256(s0, s1, 0x20), _mm256_permute2x128_si256(s2, s3, 0x20));
  Keep_Bytes(set, 1, _mm256_permute2x128_si256(s0, s1, 0x31), _mm256_permute2x128_si256(s2, s3, 0x31));
}

void Use_Encode_Avx2(Kernels* record) { record->encodeRow = Encode_Units; }
