/* Vectors and their verbs at the level avx2: see vector_body.h. A vector is two lanes. */
#include <immintrin.h>

#define INLINE static inline __attribute__((always_inline))

typedef __m256i Vector;
typedef __m128i Lane;

INLINE Lane Load_Lane(const void* from) { return _mm_loadu_si128((const __m128i*)from); }
INLINE Lane Load_Half_Lane(const void* from) { return _mm_loadl_epi64((const __m128i*)from); }
INLINE Lane Low_Lane(Vector a) { return _mm256_castsi256_si128(a); }
INLINE Lane High_Lane(Vector a) { return _mm256_extracti128_si256(a, 1); }
INLINE void Store_Lane(uint8_t* to, Lane a) { _mm_storeu_si128((__m128i*)to, a); }
INLINE void Store_Low_Half(uint8_t* to, Lane a) { _mm_storel_epi64((__m128i*)to, a); }
INLINE void Store_High_Half(uint8_t* to, Lane a) { _mm_storeh_pi((__m64*)to, _mm_castsi128_ps(a)); }
INLINE Vector Each_Lane(Lane a) { return _mm256_broadcastsi128_si256(a); }
INLINE Vector Join_Lanes(Lane low, Lane high) { return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1); }

INLINE Vector Load(const void* from) { return _mm256_loadu_si256((const __m256i*)from); }
INLINE Vector Load_Aligned(const void* from) { return _mm256_load_si256((const __m256i*)from); }
INLINE Vector Load_Each_Lane(const void* from) { return Each_Lane(Load_Lane(from)); }
INLINE Vector Load_Halves(const void* from) { return _mm256_permute4x64_epi64(_mm256_castsi128_si256(Load_Lane(from)), 0x50); }
INLINE void Store(void* to, Vector a) { _mm256_storeu_si256((__m256i*)to, a); }
INLINE void Store_Aligned(void* to, Vector a) { _mm256_store_si256((__m256i*)to, a); }

INLINE void Store_Lanes(uint8_t* to, Vector low, Vector high) {
  Store(to, _mm256_permute2x128_si256(low, high, 0x20));
  Store(to + 32, _mm256_permute2x128_si256(low, high, 0x31));
}

INLINE Vector Broadcast_8(int32_t number) { return _mm256_set1_epi8((char)number); }
INLINE Vector Broadcast_16(int32_t number) { return _mm256_set1_epi16((int16_t)number); }
INLINE Vector Broadcast_32(int32_t number) { return _mm256_set1_epi32(number); }

INLINE Vector Add_8(Vector a, Vector b) { return _mm256_add_epi8(a, b); }
INLINE Vector Add_16(Vector a, Vector b) { return _mm256_add_epi16(a, b); }
INLINE Vector Add_32(Vector a, Vector b) { return _mm256_add_epi32(a, b); }
INLINE Vector Subtract_16(Vector a, Vector b) { return _mm256_sub_epi16(a, b); }
INLINE Vector Subtract_32(Vector a, Vector b) { return _mm256_sub_epi32(a, b); }
INLINE Vector Add_Saturate_8(Vector a, Vector b) { return _mm256_adds_epu8(a, b); }
INLINE Vector Subtract_Saturate_8(Vector a, Vector b) { return _mm256_subs_epu8(a, b); }

INLINE Vector Multiply_Low_16(Vector a, Vector b) { return _mm256_mullo_epi16(a, b); }
INLINE Vector Multiply_High_16(Vector a, Vector b) { return _mm256_mulhi_epi16(a, b); }
INLINE Vector Multiply_Low_32(Vector a, Vector b) { return _mm256_mullo_epi32(a, b); }
INLINE Vector Multiply_Add_Pairs_16(Vector a, Vector b) { return _mm256_madd_epi16(a, b); }

INLINE Vector Shift_Left_16(Vector a, int32_t count) { return _mm256_slli_epi16(a, count); }
INLINE Vector Shift_Left_32(Vector a, int32_t count) { return _mm256_slli_epi32(a, count); }
INLINE Vector Shift_Right_16(Vector a, int32_t count) { return _mm256_srai_epi16(a, count); }
INLINE Vector Shift_Right_32(Vector a, int32_t count) { return _mm256_srai_epi32(a, count); }
INLINE Vector Shift_Right_Unsigned_16(Vector a, int32_t count) { return _mm256_srli_epi16(a, count); }
INLINE Vector Shift_Right_Unsigned_32(Vector a, int32_t count) { return _mm256_srli_epi32(a, count); }

INLINE Vector Absolute_16(Vector a) { return _mm256_abs_epi16(a); }
INLINE Vector Copy_Sign_16(Vector size, Vector sign) { return _mm256_sign_epi16(size, sign); }

INLINE Vector Equal_8(Vector a, Vector b) { return _mm256_cmpeq_epi8(a, b); }
INLINE Vector Greater_16(Vector a, Vector b) { return _mm256_cmpgt_epi16(a, b); }
INLINE Vector Greater_32(Vector a, Vector b) { return _mm256_cmpgt_epi32(a, b); }
INLINE Vector Clear_Where(Vector mask, Vector a) { return _mm256_andnot_si256(mask, a); }
INLINE uint32_t Top_Bits_8(Vector a) { return (uint32_t)_mm256_movemask_epi8(a); }

INLINE Vector Pack_Saturate_16(Vector a, Vector b) { return _mm256_packs_epi16(a, b); }
INLINE Vector Pack_Saturate_Unsigned_16(Vector a, Vector b) { return _mm256_packus_epi16(a, b); }
INLINE Vector Pack_Saturate_32(Vector a, Vector b) { return _mm256_packs_epi32(a, b); }

INLINE Vector Interleave_Low_8(Vector a, Vector b) { return _mm256_unpacklo_epi8(a, b); }
INLINE Vector Interleave_High_8(Vector a, Vector b) { return _mm256_unpackhi_epi8(a, b); }
INLINE Vector Interleave_Low_16(Vector a, Vector b) { return _mm256_unpacklo_epi16(a, b); }
INLINE Vector Interleave_High_16(Vector a, Vector b) { return _mm256_unpackhi_epi16(a, b); }
INLINE Vector Interleave_Low_32(Vector a, Vector b) { return _mm256_unpacklo_epi32(a, b); }
INLINE Vector Interleave_High_32(Vector a, Vector b) { return _mm256_unpackhi_epi32(a, b); }
INLINE Vector Interleave_Low_64(Vector a, Vector b) { return _mm256_unpacklo_epi64(a, b); }
INLINE Vector Interleave_High_64(Vector a, Vector b) { return _mm256_unpackhi_epi64(a, b); }

/** Bytes of each lane by their numbers in it; -1 gives 0. */
INLINE Vector Pick_8(Vector a, Vector places) { return _mm256_shuffle_epi8(a, places); }

/** Quarters 0, 2, 1, 3: what was packed or interleaved lane by lane, in the order of memory. */
INLINE Vector Swap_Middle_64(Vector a) { return _mm256_permute4x64_epi64(a, 0xD8); }

#include "kernels/vector_body.h"
