#include "kernels/kernels.h"

#include <emmintrin.h>

static const size_t Wide = 16;

static uint32_t Copy_Wide(const uint8_t* data, uint8_t* out) {
  const __m128i bytes = _mm_loadu_si128((const __m128i*)data);
  _mm_storeu_si128((__m128i*)out, bytes);
  return (uint32_t)_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(-1)));
}

static uint8_t* Copy_Rest(const uint8_t* data, uint32_t found, uint8_t* out) {
  const __m128i bytes = _mm_loadu_si128((const __m128i*)data), full = _mm_cmpeq_epi8(bytes, _mm_set1_epi8(-1));
  const __m128i escaped = _mm_and_si128(_mm_slli_si128(full, 1), _mm_cmpeq_epi8(bytes, _mm_setzero_si128()));
  uint8_t made[16];
  _mm_storeu_si128((__m128i*)made, _mm_or_si128(bytes, escaped));
  for (int32_t i = 0; i < 16; ++i) {
    *out = made[i];
    out += ~found >> i & 1;
  }
  return out;
}

#include "kernels/unstuff_body.h"

void Use_Unstuff_Sse2(Kernels* record) { record->unstuff = Unstuff; }
