/* One block at a time. */
#include "kernels/kernels.h"

#include <emmintrin.h>

typedef __m128i Lanes;

static Lanes Words(int16_t x) { return _mm_set1_epi16(x); }
static Lanes Load(const int16_t* p) { return _mm_loadu_si128((const __m128i*)p); }
static Lanes Load_Table(const int16_t* p) { return _mm_loadu_si128((const __m128i*)p); }
static Lanes Add(Lanes a, Lanes b) { return _mm_add_epi16(a, b); }
static Lanes Sub(Lanes a, Lanes b) { return _mm_sub_epi16(a, b); }
static Lanes Xor(Lanes a, Lanes b) { return _mm_xor_si128(a, b); }
static Lanes Add_Doubles(Lanes a, Lanes b) { return _mm_add_epi32(a, b); }
static Lanes Product(Lanes a, Lanes b) { return _mm_mullo_epi16(a, b); }
static Lanes High_Product(Lanes a, Lanes b) { return _mm_mulhi_epi16(a, b); }
static Lanes Pair_Products(Lanes a, Lanes b) { return _mm_madd_epi16(a, b); }
static Lanes Size(Lanes a) { return _mm_max_epi16(a, _mm_sub_epi16(_mm_setzero_si128(), a)); }
static Lanes Shift6(Lanes a) { return _mm_srai_epi16(a, 6); }
static Lanes Pack(Lanes a, Lanes b) { return _mm_packs_epi16(a, b); }
static Lanes Low_Bytes(Lanes a, Lanes b) { return _mm_unpacklo_epi8(a, b); }
static Lanes High_Bytes(Lanes a, Lanes b) { return _mm_unpackhi_epi8(a, b); }
static Lanes Low_Words(Lanes a, Lanes b) { return _mm_unpacklo_epi16(a, b); }
static Lanes High_Words(Lanes a, Lanes b) { return _mm_unpackhi_epi16(a, b); }
static Lanes Low_Doubles(Lanes a, Lanes b) { return _mm_unpacklo_epi32(a, b); }
static Lanes High_Doubles(Lanes a, Lanes b) { return _mm_unpackhi_epi32(a, b); }
static Lanes Low_Quads(Lanes a, Lanes b) { return _mm_unpacklo_epi64(a, b); }
static Lanes High_Quads(Lanes a, Lanes b) { return _mm_unpackhi_epi64(a, b); }

/** Does the sum of four doubles pass the limit? */
static int32_t Exceeds(Lanes sum, int32_t limit) {
  sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, 0x4E));
  sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, 0xB1));
  return _mm_cvtsi128_si32(sum) > limit;
}

#include "kernels/strip_transform_body.h"

/* What 16 bits can't hold: the rule in 32, half a row a vector. */

/** The low halves of the products, of which this level has every second. */
static Lanes Wide_Product(Lanes a, Lanes b) {
  const Lanes even = _mm_mul_epu32(a, b), odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
  return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, 0x08), _mm_shuffle_epi32(odd, 0x08));
}

static Lanes Wide_Times(Lanes x, int32_t c) { return _mm_srai_epi32(Wide_Product(x, _mm_set1_epi32(c)), 8); }
static Lanes Wide_Sub(Lanes a, Lanes b) { return _mm_sub_epi32(a, b); }

static void Wide_Butterfly(Lanes* v) {
  const Lanes u0 = Add_Doubles(v[0], v[4]), u1 = Wide_Sub(v[0], v[4]), u3 = Add_Doubles(v[2], v[6]);
  const Lanes u2 = Wide_Sub(Wide_Times(Wide_Sub(v[2], v[6]), 362), u3);
  const Lanes e0 = Add_Doubles(u0, u3), e3 = Wide_Sub(u0, u3), e1 = Add_Doubles(u1, u2), e2 = Wide_Sub(u1, u2);
  const Lanes z13 = Add_Doubles(v[5], v[3]), z10 = Wide_Sub(v[5], v[3]);
  const Lanes z11 = Add_Doubles(v[1], v[7]), z12 = Wide_Sub(v[1], v[7]);
  const Lanes o7 = Add_Doubles(z11, z13), q11 = Wide_Times(Wide_Sub(z11, z13), 362);
  const Lanes z5 = Wide_Times(Add_Doubles(z10, z12), 473);
  const Lanes q10 = Wide_Sub(Wide_Times(z12, 277), z5), q12 = Add_Doubles(Wide_Times(z10, -669), z5);
  const Lanes o6 = Wide_Sub(q12, o7), o5 = Wide_Sub(q11, o6), o4 = Add_Doubles(q10, o5);
  v[0] = Add_Doubles(e0, o7), v[7] = Wide_Sub(e0, o7);
  v[1] = Add_Doubles(e1, o6), v[6] = Wide_Sub(e1, o6);
  v[2] = Add_Doubles(e2, o5), v[5] = Wide_Sub(e2, o5);
  v[3] = Wide_Sub(e3, o4), v[4] = Add_Doubles(e3, o4);
}

/** Four rows of four to columns: from[i] becomes column i. */
static void Wide_Turn(const Lanes* from, Lanes* to) {
  const Lanes a0 = Low_Doubles(from[0], from[1]), a1 = High_Doubles(from[0], from[1]);
  const Lanes a2 = Low_Doubles(from[2], from[3]), a3 = High_Doubles(from[2], from[3]);
  to[0] = Low_Quads(a0, a2), to[1] = High_Quads(a0, a2), to[2] = Low_Quads(a1, a3), to[3] = High_Quads(a1, a3);
}

static void Wide_Transpose(Lanes* left, Lanes* right) {
  Lanes a[8], b[8];
  Wide_Turn(left, a), Wide_Turn(left + 4, b);
  Wide_Turn(right, a + 4), Wide_Turn(right + 4, b + 4);
  for (int32_t i = 0; i < 8; ++i) left[i] = a[i], right[i] = b[i];
}

static void Wide_Block(const int16_t* block, int32_t dc, const StripQuant* quant, uint8_t* const* rows, int32_t left) {
  Lanes low[8], high[8];
  for (int32_t i = 0; i < 8; ++i) {
    const Lanes words = Load(block + 16 * i), factors = Load_Table(quant->factors + 8 * i);
    const Lanes lower = Product(words, factors), upper = High_Product(words, factors);
    low[i] = Low_Words(lower, upper);
    high[i] = High_Words(lower, upper);
  }
  // DC is more than a word.
  const uint32_t first = (uint32_t)dc * (uint32_t)(int32_t)quant->factors[0];
  low[0] = _mm_or_si128(_mm_and_si128(low[0], _mm_setr_epi32(0, -1, -1, -1)), _mm_cvtsi32_si128((int32_t)first));
  for (int32_t pass = 0; pass < 2; ++pass) {
    Wide_Butterfly(low);
    Wide_Butterfly(high);
    Wide_Transpose(low, high);
  }
  for (int32_t i = 0; i < 8; ++i) {
    const Lanes a = _mm_srai_epi32(_mm_slli_epi32(low[i], 16), 22), b = _mm_srai_epi32(_mm_slli_epi32(high[i], 16), 22);
    const Lanes words = _mm_packs_epi32(a, b);
    _mm_storel_epi64((__m128i*)(rows[i] + left), Xor(Pack(words, words), _mm_set1_epi8((char)0x80)));
  }
}

static void Clear(int16_t* block, int32_t rows) {
  for (int32_t i = 0; i < rows; ++i) _mm_storeu_si128((__m128i*)(block + 16 * i), _mm_setzero_si128());
}

static void Put(const Lanes* out, uint8_t* const* rows, int32_t left) {
  for (int32_t i = 0; i < 4; ++i) {
    _mm_storel_epi64((__m128i*)(rows[2 * i] + left), out[i]);
    _mm_storeh_pi((__m64*)(rows[2 * i + 1] + left), _mm_castsi128_ps(out[i]));
  }
}

static void Flat_Block(int16_t* block, int32_t dc, const StripQuant* quant, uint8_t* const* rows, int32_t left) {
  const __m128i flat = _mm_set1_epi8((char)Flat_Sample(dc, quant->factors[0]));
  for (int32_t i = 0; i < 8; ++i) _mm_storel_epi64((__m128i*)(rows[i] + left), flat);
  Clear(block, 1);
}

static void Narrow_Block(int16_t* block, const StripQuant* quant, uint8_t* const* rows, int32_t left) {
  Lanes out[4];
  Transform_Narrow(block, quant, out);
  Put(out, rows, left);
  Clear(block, 4);
}

static void Full_Block(int16_t* block, const StripQuant* quant, uint8_t* const* rows, int32_t left) {
  Lanes out[4];
  Transform_Full(block, quant, out);
  Put(out, rows, left);
  Clear(block, 8);
}

static void Transform_Block(int16_t* block, StripProgress progress, int32_t dc, const StripQuant* quant, uint8_t* const* rows,
                            int32_t left) {
  const int32_t positions = progress & 0xFF, sizes = (int32_t)(progress >> StripSizeShift);
  if (positions <= 1) {
    Flat_Block(block, dc, quant, rows, left);
  } else if (positions <= StripNarrow && sizes <= quant->narrowLimit) {
    Narrow_Block(block, quant, rows, left);
  } else if ((positions <= StripMiddle && sizes <= quant->middleLimit) || Fits(block, quant)) {
    Full_Block(block, quant, rows, left);
  } else {
    Wide_Block(block, dc, quant, rows, left);
    Clear(block, 8);
  }
}

static void Transform_Strip(int16_t* blocks, const StripReach* reach, int32_t macroblocks, const StripQuant* luma,
                            const StripQuant* chroma, int32_t* predictors, uint8_t* const* rows) {
  int32_t dc[6 * StripMacroblocks];
  Sum_Dc(blocks, macroblocks, predictors, dc);
  for (int32_t m = 0; m < macroblocks; ++m) {
    for (int32_t i = 0; i < 6; ++i) {
      const int32_t isLuma = i < 4, left = isLuma ? 16 * m + i % 2 * 8 : 8 * m;
      int16_t* const block = blocks + (ptrdiff_t)m * StripMacroblockSize + i / 2 * StripPairSize + i % 2 * 8;
      uint8_t* const* const blockRows = rows + (isLuma ? i / 2 * 8 : 8 * i - 16);
      const int32_t b = 6 * m + i;
      Transform_Block(block, reach->blocks[b], dc[b], isLuma ? luma : chroma, blockRows, left);
    }
  }
}

void Use_Strip_Transform_Sse2(Kernels* record) { record->transformStrip = Transform_Strip; }
