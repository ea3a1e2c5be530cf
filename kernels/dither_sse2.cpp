#include "kernels/kernels.h"

#include <emmintrin.h>

typedef __m128i V;
#define OP(name) _mm_##name

static V Load(const uint8_t* from) { return _mm_loadu_si128((const V*)from); }

static V Load_Half(const uint8_t* from) { return _mm_loadl_epi64((const V*)from); }

static void Store(uint8_t* to, V vector) { _mm_storeu_si128((V*)to, vector); }

#include "kernels/dither_body.h"

void Use_Dither_Sse2(Kernels* record) { record->ditherRow = Dither_Row; }
