/* Vectors and their verbs at the level sse2: see vector_body.h. A vector is one lane. */
#include <emmintrin.h>

#define INLINE static inline __attribute__((always_inline))

typedef __m128i Vector;

INLINE Vector Load(const void* from) { return _mm_loadu_si128((const __m128i*)from); }
INLINE Vector Load_Aligned(const void* from) { return _mm_load_si128((const __m128i*)from); }
INLINE Vector Load_Each_Lane(const void* from) { return _mm_loadu_si128((const __m128i*)from); }
INLINE Vector Load_Halves(const void* from) { return _mm_loadl_epi64((const __m128i*)from); }
INLINE void Store(void* to, Vector a) { _mm_storeu_si128((__m128i*)to, a); }
INLINE void Store_Aligned(void* to, Vector a) { _mm_store_si128((__m128i*)to, a); }

INLINE void Store_Low_Half(uint8_t* to, Vector a) { _mm_storel_epi64((__m128i*)to, a); }
INLINE void Store_High_Half(uint8_t* to, Vector a) { _mm_storeh_pi((__m64*)to, _mm_castsi128_ps(a)); }

INLINE void Store_Lanes(uint8_t* to, Vector low, Vector high) {
  Store(to, low);
  Store(to + 16, high);
}

INLINE Vector Broadcast_8(int32_t number) { return _mm_set1_epi8((char)number); }
INLINE Vector Broadcast_16(int32_t number) { return _mm_set1_epi16((int16_t)number); }
INLINE Vector Broadcast_32(int32_t number) { return _mm_set1_epi32(number); }

INLINE Vector Add_8(Vector a, Vector b) { return _mm_add_epi8(a, b); }
INLINE Vector Add_16(Vector a, Vector b) { return _mm_add_epi16(a, b); }
INLINE Vector Add_32(Vector a, Vector b) { return _mm_add_epi32(a, b); }
INLINE Vector Subtract_16(Vector a, Vector b) { return _mm_sub_epi16(a, b); }
INLINE Vector Subtract_32(Vector a, Vector b) { return _mm_sub_epi32(a, b); }
INLINE Vector Add_Saturate_8(Vector a, Vector b) { return _mm_adds_epu8(a, b); }
INLINE Vector Subtract_Saturate_8(Vector a, Vector b) { return _mm_subs_epu8(a, b); }

INLINE Vector Multiply_Low_16(Vector a, Vector b) { return _mm_mullo_epi16(a, b); }
INLINE Vector Multiply_High_16(Vector a, Vector b) { return _mm_mulhi_epi16(a, b); }
INLINE Vector Multiply_Add_Pairs_16(Vector a, Vector b) { return _mm_madd_epi16(a, b); }

/** The processor multiplies every second number only. */
INLINE Vector Multiply_Low_32(Vector a, Vector b) {
  const Vector even = _mm_mul_epu32(a, b), odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
  return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, 0x08), _mm_shuffle_epi32(odd, 0x08));
}

INLINE Vector Shift_Left_16(Vector a, int32_t count) { return _mm_slli_epi16(a, count); }
INLINE Vector Shift_Left_32(Vector a, int32_t count) { return _mm_slli_epi32(a, count); }
INLINE Vector Shift_Right_16(Vector a, int32_t count) { return _mm_srai_epi16(a, count); }
INLINE Vector Shift_Right_32(Vector a, int32_t count) { return _mm_srai_epi32(a, count); }
INLINE Vector Shift_Right_Unsigned_16(Vector a, int32_t count) { return _mm_srli_epi16(a, count); }
INLINE Vector Shift_Right_Unsigned_32(Vector a, int32_t count) { return _mm_srli_epi32(a, count); }

INLINE Vector Absolute_16(Vector a) { return _mm_max_epi16(a, _mm_sub_epi16(_mm_setzero_si128(), a)); }

INLINE Vector Copy_Sign_16(Vector size, Vector sign) {
  const Vector negative = _mm_srai_epi16(sign, 15);
  return _mm_sub_epi16(_mm_xor_si128(size, negative), negative);
}

INLINE Vector Equal_8(Vector a, Vector b) { return _mm_cmpeq_epi8(a, b); }
INLINE Vector Greater_16(Vector a, Vector b) { return _mm_cmpgt_epi16(a, b); }
INLINE Vector Clear_Where(Vector mask, Vector a) { return _mm_andnot_si128(mask, a); }
INLINE uint32_t Top_Bits_8(Vector a) { return (uint32_t)_mm_movemask_epi8(a); }

INLINE Vector Pack_Saturate_16(Vector a, Vector b) { return _mm_packs_epi16(a, b); }
INLINE Vector Pack_Saturate_Unsigned_16(Vector a, Vector b) { return _mm_packus_epi16(a, b); }
INLINE Vector Pack_Saturate_32(Vector a, Vector b) { return _mm_packs_epi32(a, b); }

INLINE Vector Interleave_Low_8(Vector a, Vector b) { return _mm_unpacklo_epi8(a, b); }
INLINE Vector Interleave_High_8(Vector a, Vector b) { return _mm_unpackhi_epi8(a, b); }
INLINE Vector Interleave_Low_16(Vector a, Vector b) { return _mm_unpacklo_epi16(a, b); }
INLINE Vector Interleave_High_16(Vector a, Vector b) { return _mm_unpackhi_epi16(a, b); }
INLINE Vector Interleave_Low_32(Vector a, Vector b) { return _mm_unpacklo_epi32(a, b); }
INLINE Vector Interleave_High_32(Vector a, Vector b) { return _mm_unpackhi_epi32(a, b); }
INLINE Vector Interleave_Low_64(Vector a, Vector b) { return _mm_unpacklo_epi64(a, b); }
INLINE Vector Interleave_High_64(Vector a, Vector b) { return _mm_unpackhi_epi64(a, b); }

#include "kernels/vector_body.h"
