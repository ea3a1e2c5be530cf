/* Two blocks side by side: luma neighbours, or Cb with Cr. */
#include "kernels/kernels.h"

#include <immintrin.h>

typedef __m256i Lanes;

static Lanes Words(int16_t x) { return _mm256_set1_epi16(x); }
static Lanes Load(const int16_t* p) { return _mm256_loadu_si256((const __m256i*)p); }
static Lanes Load_Table(const int16_t* p) { return _mm256_broadcastsi128_si256(_mm_loadu_si128((const __m128i*)p)); }
static Lanes Add(Lanes a, Lanes b) { return _mm256_add_epi16(a, b); }
static Lanes Sub(Lanes a, Lanes b) { return _mm256_sub_epi16(a, b); }
static Lanes Xor(Lanes a, Lanes b) { return _mm256_xor_si256(a, b); }
static Lanes Add_Doubles(Lanes a, Lanes b) { return _mm256_add_epi32(a, b); }
static Lanes Product(Lanes a, Lanes b) { return _mm256_mullo_epi16(a, b); }
static Lanes High_Product(Lanes a, Lanes b) { return _mm256_mulhi_epi16(a, b); }
static Lanes Pair_Products(Lanes a, Lanes b) { return _mm256_madd_epi16(a, b); }
static Lanes Size(Lanes a) { return _mm256_abs_epi16(a); }
static Lanes Shift6(Lanes a) { return _mm256_srai_epi16(a, 6); }
static Lanes Pack(Lanes a, Lanes b) { return _mm256_packs_epi16(a, b); }
static Lanes Low_Bytes(Lanes a, Lanes b) { return _mm256_unpacklo_epi8(a, b); }
static Lanes High_Bytes(Lanes a, Lanes b) { return _mm256_unpackhi_epi8(a, b); }
static Lanes Low_Words(Lanes a, Lanes b) { return _mm256_unpacklo_epi16(a, b); }
static Lanes High_Words(Lanes a, Lanes b) { return _mm256_unpackhi_epi16(a, b); }
static Lanes Low_Doubles(Lanes a, Lanes b) { return _mm256_unpacklo_epi32(a, b); }
static Lanes High_Doubles(Lanes a, Lanes b) { return _mm256_unpackhi_epi32(a, b); }
static Lanes Low_Quads(Lanes a, Lanes b) { return _mm256_unpacklo_epi64(a, b); }
static Lanes High_Quads(Lanes a, Lanes b) { return _mm256_unpackhi_epi64(a, b); }

/** Does the sum of a block's four doubles pass the limit? Each half is a block. */
static int32_t Exceeds(Lanes sum, int32_t limit) {
  sum = _mm256_add_epi32(sum, _mm256_shuffle_epi32(sum, 0x4E));
  sum = _mm256_add_epi32(sum, _mm256_shuffle_epi32(sum, 0xB1));
  return _mm256_movemask_epi8(_mm256_cmpgt_epi32(sum, _mm256_set1_epi32(limit)));
}

#include "kernels/strip_transform_body.h"

/* What 16 bits can't hold: the rule in 32, one block, a row a vector. */

static __m256i Wide_Times(__m256i x, int32_t c) {
  return _mm256_srai_epi32(_mm256_mullo_epi32(x, _mm256_set1_epi32(c)), 8);
}

static void Wide_Butterfly(__m256i* v) {
  const __m256i u0 = _mm256_add_epi32(v[0], v[4]), u1 = _mm256_sub_epi32(v[0], v[4]), u3 = _mm256_add_epi32(v[2], v[6]);
  const __m256i u2 = _mm256_sub_epi32(Wide_Times(_mm256_sub_epi32(v[2], v[6]), 362), u3);
  const __m256i e0 = _mm256_add_epi32(u0, u3), e3 = _mm256_sub_epi32(u0, u3);
  const __m256i e1 = _mm256_add_epi32(u1, u2), e2 = _mm256_sub_epi32(u1, u2);
  const __m256i z13 = _mm256_add_epi32(v[5], v[3]), z10 = _mm256_sub_epi32(v[5], v[3]);
  const __m256i z11 = _mm256_add_epi32(v[1], v[7]), z12 = _mm256_sub_epi32(v[1], v[7]);
  const __m256i o7 = _mm256_add_epi32(z11, z13), q11 = Wide_Times(_mm256_sub_epi32(z11, z13), 362);
  const __m256i z5 = Wide_Times(_mm256_add_epi32(z10, z12), 473);
  const __m256i q10 = _mm256_sub_epi32(Wide_Times(z12, 277), z5), q12 = _mm256_add_epi32(Wide_Times(z10, -669), z5);
  const __m256i o6 = _mm256_sub_epi32(q12, o7), o5 = _mm256_sub_epi32(q11, o6), o4 = _mm256_add_epi32(q10, o5);
  v[0] = _mm256_add_epi32(e0, o7), v[7] = _mm256_sub_epi32(e0, o7);
  v[1] = _mm256_add_epi32(e1, o6), v[6] = _mm256_sub_epi32(e1, o6);
  v[2] = _mm256_add_epi32(e2, o5), v[5] = _mm256_sub_epi32(e2, o5);
  v[3] = _mm256_sub_epi32(e3, o4), v[4] = _mm256_add_epi32(e3, o4);
}

static void Wide_Transpose(__m256i* v) {
  __m256i a[8], b[8];
  for (int32_t i = 0; i < 8; i += 2) {
    a[i] = _mm256_unpacklo_epi32(v[i], v[i + 1]);
    a[i + 1] = _mm256_unpackhi_epi32(v[i], v[i + 1]);
  }
  for (int32_t i = 0; i < 8; i += 4) {
    b[i] = _mm256_unpacklo_epi64(a[i], a[i + 2]), b[i + 1] = _mm256_unpackhi_epi64(a[i], a[i + 2]);
    b[i + 2] = _mm256_unpacklo_epi64(a[i + 1], a[i + 3]), b[i + 3] = _mm256_unpackhi_epi64(a[i + 1], a[i + 3]);
  }
  for (int32_t i = 0; i < 4; ++i) {
    v[i] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x20);
    v[i + 4] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x31);
  }
}

__attribute__((noinline)) static void Wide_Block(const int16_t* block, int32_t dc, const StripQuant* quant, uint8_t* const* rows,
                                                 int32_t left) {
  __m256i v[8];
  for (int32_t i = 0; i < 8; ++i) {
    __m256i row = _mm256_cvtepi16_epi32(_mm_loadu_si128((const __m128i*)(block + 16 * i)));
    if (i == 0) row = _mm256_insert_epi32(row, dc, 0);
    v[i] = _mm256_mullo_epi32(row, _mm256_cvtepi16_epi32(_mm_loadu_si128((const __m128i*)(quant->factors + 8 * i))));
  }
  Wide_Butterfly(v);
  Wide_Transpose(v);
  Wide_Butterfly(v);
  Wide_Transpose(v);
  for (int32_t i = 0; i < 8; ++i) {
    const __m256i x = _mm256_srai_epi32(_mm256_slli_epi32(v[i], 16), 22);
    const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(x), _mm256_extracti128_si256(x, 1));
    const __m128i bytes = _mm_xor_si128(_mm_packs_epi16(words, words), _mm_set1_epi8((char)0x80));
    _mm_storel_epi64((__m128i*)(rows[i] + left), bytes);
  }
}

static __m128i Flat_Pair(const int32_t* dc, int16_t factor) {
  const __m128i a = _mm_set1_epi8((char)Flat_Sample(dc[0], factor)), b = _mm_set1_epi8((char)Flat_Sample(dc[1], factor));
  return _mm_unpacklo_epi64(a, b);
}

static void Clear(int16_t* pair, int32_t rows) {
  for (int32_t i = 0; i < rows; ++i) _mm256_storeu_si256((__m256i*)(pair + 16 * i), _mm256_setzero_si256());
}

/** Transforms a pair that has more than DC and clears it. out: rows 2i and 2i + 1 of either block in a half. Gives 0 where 16 bits may
 * not be enough; the pair stays then. */
static inline int32_t Transform_Pair(int16_t* pair, uint32_t reach, const StripQuant* quant, Lanes* out) {
  if (reach <= 10) {
    if (!Transform_Narrow(pair, quant, out)) return 0;
    Clear(pair, 4);
    return 1;
  }
  if (!Transform_Full(pair, quant, out)) return 0;
  Clear(pair, 8);
  return 1;
}

static uint32_t Larger(const uint8_t* reach) { return reach[0] > reach[1] ? reach[0] : reach[1]; }

static void Luma_Pair(int16_t* pair, const uint8_t* reach, const int32_t* dc, const StripQuant* quant, uint8_t* const* rows,
                      int32_t left) {
  const uint32_t larger = Larger(reach);
  if (larger <= 1) {
    const __m128i flat = Flat_Pair(dc, quant->factors[0]);
    for (int32_t i = 0; i < 8; ++i) _mm_storeu_si128((__m128i*)(rows[i] + left), flat);
    Clear(pair, 1);
    return;
  }
  Lanes out[4];
  if (!Transform_Pair(pair, larger, quant, out)) {
    Wide_Block(pair, dc[0], quant, rows, left);
    Wide_Block(pair + 8, dc[1], quant, rows, left + 8);
    Clear(pair, 8);
    return;
  }
  for (int32_t i = 0; i < 4; ++i) {
    const __m256i both = _mm256_permute4x64_epi64(out[i], 0xD8);
    _mm_storeu_si128((__m128i*)(rows[2 * i] + left), _mm256_castsi256_si128(both));
    _mm_storeu_si128((__m128i*)(rows[2 * i + 1] + left), _mm256_extracti128_si256(both, 1));
  }
}

static void Chroma_Pair(int16_t* pair, const uint8_t* reach, const int32_t* dc, const StripQuant* quant, uint8_t* const* rows,
                        int32_t left) {
  uint8_t* const* const crRows = rows + 8;
  const uint32_t larger = Larger(reach);
  if (larger <= 1) {
    const __m128i flat = Flat_Pair(dc, quant->factors[0]);
    for (int32_t i = 0; i < 8; ++i) {
      _mm_storel_epi64((__m128i*)(rows[i] + left), flat);
      _mm_storeh_pd((double*)(crRows[i] + left), _mm_castsi128_pd(flat));
    }
    Clear(pair, 1);
    return;
  }
  Lanes out[4];
  if (!Transform_Pair(pair, larger, quant, out)) {
    Wide_Block(pair, dc[0], quant, rows, left);
    Wide_Block(pair + 8, dc[1], quant, crRows, left);
    Clear(pair, 8);
    return;
  }
  for (int32_t i = 0; i < 4; ++i) {
    const __m128i cb = _mm256_castsi256_si128(out[i]), cr = _mm256_extracti128_si256(out[i], 1);
    _mm_storel_epi64((__m128i*)(rows[2 * i] + left), cb);
    _mm_storeh_pd((double*)(rows[2 * i + 1] + left), _mm_castsi128_pd(cb));
    _mm_storel_epi64((__m128i*)(crRows[2 * i] + left), cr);
    _mm_storeh_pd((double*)(crRows[2 * i + 1] + left), _mm_castsi128_pd(cr));
  }
}

void Transform_Strip_Avx2(int16_t* blocks, const uint8_t* reach, int32_t macroblocks, const StripQuant* luma,
                          const StripQuant* chroma, const uint8_t*, int32_t* predictors, uint8_t* const* rows) {
  int32_t dcs[6 * StripMacroblocks];
  Sum_Dc(blocks, macroblocks, predictors, dcs);
  const int32_t* dc = dcs;
  for (int32_t m = 0; m < macroblocks; ++m, blocks += StripMacroblockSize, reach += 6, dc += 6) {
    Luma_Pair(blocks, reach, dc, luma, rows, 16 * m);
    Luma_Pair(blocks + StripPairSize, reach + 2, dc + 2, luma, rows + 8, 16 * m);
    Chroma_Pair(blocks + (ptrdiff_t)2 * StripPairSize, reach + 4, dc + 4, chroma, rows + 16, 8 * m);
  }
}
