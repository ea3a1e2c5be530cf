/* One block at a time. What 16 bits can't hold goes to the plain transform: this level has no product of 32 bits. */
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

static void Plain_Block(const int16_t* block, int32_t dc, const StripQuant* quant, const uint8_t* rangeLimit,
                        uint8_t* const* rows, int32_t left) {
  uint8_t* places[8];
  for (int32_t i = 0; i < 8; ++i) places[i] = rows[i] + left;
  int32_t wide[64];
  for (int32_t i = 0; i < 64; ++i) wide[i] = block[i / 8 * 16 + i % 8];
  wide[0] = dc;
  Idct_Row_Plain(wide, 1, quant->factors, rangeLimit, places);
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

static void Transform_Block(int16_t* block, StripProgress progress, int32_t dc, const StripQuant* quant,
                            const uint8_t* rangeLimit, uint8_t* const* rows, int32_t left) {
  const int32_t positions = progress & 0xFF, sizes = (int32_t)(progress >> StripSizeShift);
  if (positions <= 1) {
    Flat_Block(block, dc, quant, rows, left);
  } else if (positions <= StripNarrow && sizes <= quant->narrowLimit) {
    Narrow_Block(block, quant, rows, left);
  } else if ((positions <= StripMiddle && sizes <= quant->middleLimit) || Fits(block, quant)) {
    Full_Block(block, quant, rows, left);
  } else {
    Plain_Block(block, dc, quant, rangeLimit, rows, left);
    Clear(block, 8);
  }
}

static void Transform_Strip(int16_t* blocks, const StripReach* reach, int32_t macroblocks, const StripQuant* luma,
                            const StripQuant* chroma, const uint8_t* rangeLimit, int32_t* predictors, uint8_t* const* rows) {
  int32_t dc[6 * StripMacroblocks];
  Sum_Dc(blocks, macroblocks, predictors, dc);
  for (int32_t m = 0; m < macroblocks; ++m) {
    for (int32_t i = 0; i < 6; ++i) {
      const int32_t isLuma = i < 4, left = isLuma ? 16 * m + i % 2 * 8 : 8 * m;
      int16_t* const block = blocks + (ptrdiff_t)m * StripMacroblockSize + i / 2 * StripPairSize + i % 2 * 8;
      uint8_t* const* const blockRows = rows + (isLuma ? i / 2 * 8 : 8 * i - 16);
      const int32_t b = 6 * m + i;
      Transform_Block(block, reach->blocks[b], dc[b], isLuma ? luma : chroma, rangeLimit, blockRows, left);
    }
  }
}

void Overlay_Strip_Transform_Sse2(Kernels* record) { record->transformStrip = Transform_Strip; }
