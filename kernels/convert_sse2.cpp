/* The converters in vectors of 8 pairs. Without byte shuffles three bytes a pixel are woven by words, then by double words. */
#include "kernels/kernels.h"

#include <emmintrin.h>

typedef __m128i V;
#define OP(name) _mm_##name

static V Load(const uint8_t* from) { return _mm_loadu_si128((const V*)from); }

static V Load_Half(const uint8_t* from) { return _mm_loadl_epi64((const V*)from); }

static void Store(uint8_t* to, V vector) { _mm_storeu_si128((V*)to, vector); }

static void Store_Lanes(uint8_t* to, V lower, V upper) {
  Store(to, lower);
  Store(to + 16, upper);
}

#include "kernels/convert_body.h"

/** Two of the low and two of the high vector's double words, by their numbers. */
#define SHUFFLE_DWORDS(low, high, a, b, c, d) \
  _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(low), _mm_castsi128_ps(high), _MM_SHUFFLE(d, c, b, a)))

/** What the three words of a pair of pixels get: blue and green; red and the next blue; green and red. */
struct WovenOffsets {
  Offset first, second, third;
};

static Offset Weave(V low, V high) { return {_mm_unpacklo_epi8(low, high), _mm_unpackhi_epi8(low, high)}; }

/** Double words of three words each from two pairs of pixels: to memory, in turn. */
static void Put_Woven(uint8_t* out, V first, V second, V third) {
  const V low12 = _mm_unpacklo_epi32(first, second), low23 = _mm_unpacklo_epi32(second, third);
  const V high12 = _mm_unpackhi_epi32(first, second), high23 = _mm_unpackhi_epi32(second, third);
  const V between = SHUFFLE_DWORDS(third, first, 0, 2, 1, 3);
  Store(out, SHUFFLE_DWORDS(low12, between, 0, 1, 0, 2));
  Store(out + 16, SHUFFLE_DWORDS(low23, high12, 2, 3, 0, 1));
  Store(out + 32, SHUFFLE_DWORDS(between, high23, 1, 3, 2, 3));
}

static void Put_Rgb24(uint8_t* out, V luma, const WovenOffsets& offsets) {
  const V even = _mm_set1_epi16(0xFF), evenWords = _mm_set1_epi32(0xFFFF);
  const V first = Add((luma & even) | _mm_slli_epi16(luma, 8), offsets.first);
  const V second = Add(luma, offsets.second);
  const V third = Add(_mm_andnot_si128(even, luma) | _mm_srli_epi16(luma, 8), offsets.third);
  Put_Woven(out, (first & evenWords) | _mm_slli_epi32(second, 16), (third & evenWords) | _mm_andnot_si128(evenWords, first),
            _mm_srli_epi32(second, 16) | _mm_andnot_si128(evenWords, third));
}

static void Block_Rgb24(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const PairOffsets pair = Chroma_Offsets(cb, cr);
  const WovenOffsets offsets = {Weave(pair.blue, pair.green), Weave(pair.red, pair.blue), Weave(pair.green, pair.red)};
  Put_Rgb24(outUpper, Load(yUpper), offsets);
  Put_Rgb24(outLower, Load(yLower), offsets);
}

static void Put_Rgb32(uint8_t* out, V blue, V green, V red) {
  const V zero = _mm_setzero_si128();
  const V lowBlueGreen = _mm_unpacklo_epi8(blue, green), lowRed = _mm_unpacklo_epi8(red, zero);
  const V highBlueGreen = _mm_unpackhi_epi8(blue, green), highRed = _mm_unpackhi_epi8(red, zero);
  Store(out, _mm_unpacklo_epi16(lowBlueGreen, lowRed));
  Store(out + 16, _mm_unpackhi_epi16(lowBlueGreen, lowRed));
  Store(out + 32, _mm_unpacklo_epi16(highBlueGreen, highRed));
  Store(out + 48, _mm_unpackhi_epi16(highBlueGreen, highRed));
}

static void Block_Rgb32(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const PairOffsets offsets = Chroma_Offsets(cb, cr);
  const Offset blue = Twice(offsets.blue), green = Twice(offsets.green), red = Twice(offsets.red);
  const V upper = Load(yUpper), lower = Load(yLower);
  Put_Rgb32(outUpper, Add(upper, blue), Add(upper, green), Add(upper, red));
  Put_Rgb32(outLower, Add(lower, blue), Add(lower, green), Add(lower, red));
}

/** At this level the work takes longer than the memory, and streaming gains nothing. */
void Use_Convert_Sse2(Kernels* record) {
  record->toRgb24 = record->toRgb24Stream = Convert<Block_Rgb24, To_Rgb24_Plain, 3>;
  record->toRgb32 = record->toRgb32Stream = Convert<Block_Rgb32, To_Rgb32_Plain, 4>;
  record->toRgb565 = Convert<Block_Words<6>, To_Rgb565_Plain, 2>;
  record->toRgb555 = Convert<Block_Words<5>, To_Rgb555_Plain, 2>;
}
