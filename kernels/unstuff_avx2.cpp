#include "kernels/kernels.h"

#include <immintrin.h>

static const size_t Wide = 32;

static uint32_t Copy_Wide(const uint8_t* data, uint8_t* out) {
  const __m256i bytes = _mm256_loadu_si256((const __m256i*)data);
  _mm256_storeu_si256((__m256i*)out, bytes);
  return (uint32_t)_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(-1)));
}

#include "kernels/unstuff_body.h"

void Overlay_Unstuff_Avx2(Kernels* record) { record->unstuff = Unstuff; }
