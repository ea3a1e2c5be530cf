#include "kernels/kernels.h"

#include <emmintrin.h>

static const size_t Wide = 16;

static uint32_t Copy_Wide(const uint8_t* data, uint8_t* out) {
  const __m128i bytes = _mm_loadu_si128((const __m128i*)data);
  _mm_storeu_si128((__m128i*)out, bytes);
  return (uint32_t)_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(-1)));
}

#include "kernels/unstuff_body.h"

void Overlay_Unstuff_Sse2(Kernels* record) { record->unstuff = Unstuff; }
