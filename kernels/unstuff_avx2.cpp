#include "kernels/kernels.h"

#include <immintrin.h>

static const size_t Wide = 32;

static uint32_t Copy_Wide(const uint8_t* data, uint8_t* out) {
  const __m256i bytes = _mm256_loadu_si256((const __m256i*)data);
  _mm256_storeu_si256((__m256i*)out, bytes);
  return (uint32_t)_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(-1)));
}

/** By mask of eight bytes: which to keep, those that it does not name. */
struct KeptBytes {
  uint8_t places[256][8];
};

static constexpr KeptBytes Kept_Bytes() {
  KeptBytes kept = {};
  for (int32_t mask = 0; mask < 256; ++mask) {
    int32_t count = 0;
    for (int32_t i = 0; i < 8; ++i) {
      if (!(mask >> i & 1)) kept.places[mask][count++] = (uint8_t)i;
    }
  }
  return kept;
}

static constexpr KeptBytes keptBytes = Kept_Bytes();

static uint8_t* Copy_Rest(const uint8_t* data, uint32_t found, uint8_t* out) {
  const __m256i bytes = _mm256_loadu_si256((const __m256i*)data), full = _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(-1));
  const __m256i before = _mm256_alignr_epi8(full, _mm256_permute2x128_si256(full, full, 0x08), 15);
  const __m256i escaped = _mm256_and_si256(before, _mm256_cmpeq_epi8(bytes, _mm256_setzero_si256()));
  uint8_t made[32];
  _mm256_storeu_si256((__m256i*)made, _mm256_or_si256(bytes, escaped));
  for (int32_t i = 0; i < 32; i += 8) {
    const uint32_t mask = found >> i & 0xFF;
    const __m128i eight = _mm_loadl_epi64((const __m128i*)(made + i));
    const __m128i places = _mm_loadl_epi64((const __m128i*)keptBytes.places[mask]);
    _mm_storel_epi64((__m128i*)out, _mm_shuffle_epi8(eight, places));
    out += 8 - __builtin_popcount(mask);
  }
  return out;
}

#include "kernels/unstuff_body.h"

void Use_Unstuff_Avx2(Kernels* record) { record->unstuff = Unstuff; }
