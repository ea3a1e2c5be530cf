#include "kernels/kernels.h"

#include <immintrin.h>

typedef __m256i V;
#define OP(name) _mm256_##name

static V Load(const uint8_t* from) { return _mm256_loadu_si256((const V*)from); }

static V Load_Half(const uint8_t* from) {
  return _mm256_permute4x64_epi64(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i*)from)), 0x50);
}

static void Store(uint8_t* to, V vector) { _mm256_storeu_si256((V*)to, vector); }

#include "kernels/dither_body.h"

void Use_Dither_Avx2(Kernels* record) { record->ditherRow = Dither_Row; }
