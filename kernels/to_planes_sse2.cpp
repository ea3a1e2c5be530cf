/* Pixels to 4:2:0 planes, 16 of each row at a time. A pixel is a sum of two pairs of products: blue and red, green and a constant
 * that brings the rounding half along. */
#include "kernels/kernels.h"

#include <emmintrin.h>

namespace {

/** Every second of eight pixels. */
struct Four {
  __m128i blueRed;
  __m128i green;  ///< With -32768 beside it.
};

struct Eight {
  Four even, odd;
};

}  // namespace

static inline Four Split_Four(__m128i pixels) {
  const __m128i green = _mm_and_si128(_mm_srli_epi32(pixels, 8), _mm_set1_epi32(0xFF));
  return {_mm_and_si128(pixels, _mm_set1_epi32(0xFF00FF)), _mm_or_si128(green, _mm_set1_epi32((int)0x80000000))};
}

static inline __m128i Load_Two(const uint8_t* low, const uint8_t* high) {
  const __m128i lower = _mm_loadl_epi64((const __m128i*)low);
  return _mm_castpd_si128(_mm_loadh_pd(_mm_castsi128_pd(lower), (const double*)high));
}

static inline __m128i First_Of_Each(__m128i a, __m128i b) {
  return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), 0x88));
}

/** Each half of the two begins with the next two pixels. */
static inline Eight Split_Eight(__m128i a, __m128i b) {
  return {Split_Four(First_Of_Each(a, b)), Split_Four(First_Of_Each(_mm_srli_epi64(a, 24), _mm_srli_epi64(b, 24)))};
}

static inline Eight Load_Eight(const uint8_t* pixels) {
  return Split_Eight(Load_Two(pixels, pixels + 6), Load_Two(pixels + 12, pixels + 18));
}

/** Reads no byte behind the pixels. */
static inline Eight Load_Last_Eight(const uint8_t* pixels) {
  const __m128i last = _mm_srli_epi64(_mm_loadl_epi64((const __m128i*)(pixels + 16)), 16);
  return Split_Eight(Load_Two(pixels, pixels + 6), _mm_unpacklo_epi64(_mm_loadl_epi64((const __m128i*)(pixels + 12)), last));
}

static inline __m128i Factors(int low, int high) { return _mm_set1_epi32((int)((uint32_t)high << 16 | (low & 0xFFFF))); }

static inline __m128i Weighted(const Four& four, __m128i blueRed, __m128i green) {
  return _mm_add_epi32(_mm_madd_epi16(four.blueRed, blueRed), _mm_madd_epi16(four.green, green));
}

static inline __m128i Luma(const Eight& pixels) {
  // Green's factor is 65536 too small, which the upper half makes good by adding green itself.
  const __m128i blueRed = Factors(7471, 19595), green = Factors(38470 - 65536, -1), upper = _mm_set1_epi32((int)0xFFFF0000);
  const __m128i even = _mm_srli_epi32(Weighted(pixels.even, blueRed, green), 16);
  const __m128i odd = _mm_and_si128(Weighted(pixels.odd, blueRed, green), upper);
  const __m128i greens =
      _mm_or_si128(_mm_and_si128(pixels.even.green, _mm_set1_epi32(0xFF)), _mm_slli_epi32(pixels.odd.green, 16));
  return _mm_add_epi16(_mm_or_si128(even, odd), greens);
}

/** Sums of the upper halves of two neighbours each. */
static inline __m128i Upper_Halves(const Eight& pixels, __m128i blueRed, __m128i green) {
  return _mm_add_epi32(_mm_srai_epi32(Weighted(pixels.even, blueRed, green), 16),
                       _mm_srai_epi32(Weighted(pixels.odd, blueRed, green), 16));
}

/** What Cb and Cr lack to 127, as sums of two neighbours each. */
static inline __m128i Blue_Chroma(const Eight& pixels) { return Upper_Halves(pixels, Factors(-32768, 11059), Factors(21709, 1)); }
static inline __m128i Red_Chroma(const Eight& pixels) { return Upper_Halves(pixels, Factors(5329, -32768), Factors(27439, 1)); }

enum { Step = 16 };
typedef __m128i Bias;

static inline Bias Bias_Of(int32_t even, int32_t odd) { return _mm_set1_epi32((4 * 127 + odd) << 16 | (4 * 127 + even)); }

/** What eight pixels of two rows come to: luma in words, sums of what 2x2 chroma samples lack to 127. */
struct ConvertedEight {
  __m128i yUpper, yLower, blue, red;
};

static inline ConvertedEight Convert_Eight(const Eight& upper, const Eight& lower) {
  return {Luma(upper), Luma(lower), _mm_add_epi32(Blue_Chroma(upper), Blue_Chroma(lower)),
          _mm_add_epi32(Red_Chroma(upper), Red_Chroma(lower))};
}

static inline __m128i Average(__m128i a, __m128i b, Bias bias) {
  return _mm_srli_epi16(_mm_sub_epi16(bias, _mm_packs_epi32(a, b)), 2);
}

static inline void Convert_Step(const uint8_t* upper, const uint8_t* lower, uint8_t* yUpper, uint8_t* yLower, uint8_t* cb,
                                uint8_t* cr, Bias bias) {
  const ConvertedEight a = Convert_Eight(Load_Eight(upper), Load_Eight(lower));
  const ConvertedEight b = Convert_Eight(Load_Last_Eight(upper + 24), Load_Last_Eight(lower + 24));
  _mm_storeu_si128((__m128i*)yUpper, _mm_packus_epi16(a.yUpper, b.yUpper));
  _mm_storeu_si128((__m128i*)yLower, _mm_packus_epi16(a.yLower, b.yLower));
  const __m128i packed = _mm_packus_epi16(Average(a.blue, b.blue, bias), Average(a.red, b.red, bias));
  _mm_storel_epi64((__m128i*)cb, packed);
  _mm_storel_epi64((__m128i*)cr, _mm_unpackhi_epi64(packed, packed));
}

#include "kernels/to_planes_body.h"

void Use_To_Planes_Sse2(Kernels* record) { record->toPlanes = Convert_Rows; }
