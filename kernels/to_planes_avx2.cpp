/* Pixels to 4:2:0 planes, 32 of each row at a time. Two pixels' products stand in one sum of 32 bits: b and g, r and g; a bit
 * that is always set beside the second g brings the rounding half along. */
#include "kernels/kernels.h"

#include <immintrin.h>

namespace {

/** 16 pixels as (b, g) and (r, g - 32768), pixels 0 to 3 and 8 to 11 in `first`, the others in `second`. */
struct Pairs {
  __m256i blueGreen, redGreen;
};

struct Sixteen {
  Pairs first, second;
};

}  // namespace

static inline __m256i Load_Halves(const uint8_t* low, const uint8_t* high) {
  const __m256i lower = _mm256_castsi128_si256(_mm_loadu_si128((const __m128i*)low));
  return _mm256_inserti128_si256(lower, _mm_loadu_si128((const __m128i*)high), 1);
}

static inline __m256i Both_Lanes(__m128i lane) { return _mm256_broadcastsi128_si256(lane); }

static inline Sixteen Load_Sixteen(const uint8_t* pixels) {
  const __m256i rounding = _mm256_set1_epi32((int)0x80000000);
  const __m256i blue0 = Both_Lanes(_mm_setr_epi8(0, -1, 1, -1, 3, -1, 4, -1, 6, -1, 7, -1, 9, -1, 10, -1));
  const __m256i red0 = Both_Lanes(_mm_setr_epi8(2, -1, 1, -1, 5, -1, 4, -1, 8, -1, 7, -1, 11, -1, 10, -1));
  const __m256i blue4 = Both_Lanes(_mm_setr_epi8(4, -1, 5, -1, 7, -1, 8, -1, 10, -1, 11, -1, 13, -1, 14, -1));
  const __m256i red4 = Both_Lanes(_mm_setr_epi8(6, -1, 5, -1, 9, -1, 8, -1, 12, -1, 11, -1, 15, -1, 14, -1));
  const __m256i a = Load_Halves(pixels, pixels + 24), b = Load_Halves(pixels + 8, pixels + 32);
  return {{_mm256_shuffle_epi8(a, blue0), _mm256_or_si256(_mm256_shuffle_epi8(a, red0), rounding)},
          {_mm256_shuffle_epi8(b, blue4), _mm256_or_si256(_mm256_shuffle_epi8(b, red4), rounding)}};
}

static inline __m256i Factors(int low, int high) { return _mm256_set1_epi32((int)((uint32_t)high << 16 | (low & 0xFFFF))); }

static inline __m256i Weighted(const Pairs& pairs, __m256i blueGreen, __m256i redGreen) {
  return _mm256_add_epi32(_mm256_madd_epi16(pairs.blueGreen, blueGreen), _mm256_madd_epi16(pairs.redGreen, redGreen));
}

/** The upper halves of the sums of 16 pixels, in each lane in the order 0 4 1 5 2 6 3 7. */
static inline __m256i Upper_Halves(const Sixteen& pixels, __m256i blueGreen, __m256i redGreen) {
  const __m256i first = Weighted(pixels.first, blueGreen, redGreen), second = Weighted(pixels.second, blueGreen, redGreen);
  return _mm256_blend_epi16(_mm256_srli_epi32(first, 16), second, 0xAA);
}

static inline __m256i Luma(const Sixteen& pixels) {
  // The bit beside g takes 32768 * 19235 off, all but its half a multiple of 65536.
  const __m256i sums = Upper_Halves(pixels, Factors(7471, 38470 - 19235), Factors(19595, 19235));
  return _mm256_add_epi16(sums, _mm256_set1_epi16((19235 + 1) / 2));
}

/** What Cb and Cr lack to 127. */
static inline __m256i Blue_Chroma(const Sixteen& pixels) {
  return Upper_Halves(pixels, Factors(-32768, 21709 - 1), Factors(11059, 1));
}
static inline __m256i Red_Chroma(const Sixteen& pixels) {
  return Upper_Halves(pixels, Factors(5329, 27439 - 1), Factors(-32768, 1));
}

/** What sixteen pixels of two rows come to: luma, and sums of two rows of what chroma lacks to 127. */
struct ConvertedSixteen {
  __m256i yUpper, yLower, blue, red;
};

static inline ConvertedSixteen Convert_Sixteen(const uint8_t* upper, const uint8_t* lower) {
  const Sixteen a = Load_Sixteen(upper), b = Load_Sixteen(lower);
  return {Luma(a), Luma(b), _mm256_add_epi16(Blue_Chroma(a), Blue_Chroma(b)), _mm256_add_epi16(Red_Chroma(a), Red_Chroma(b))};
}

static inline void Store_Luma(uint8_t* y, __m256i a, __m256i b) {
  const __m256i order = Both_Lanes(_mm_setr_epi8(0, 2, 4, 6, 1, 3, 5, 7, 8, 10, 12, 14, 9, 11, 13, 15));
  const __m256i packed = _mm256_shuffle_epi8(_mm256_packus_epi16(a, b), order);
  _mm256_storeu_si256((__m256i*)y, _mm256_permute4x64_epi64(packed, 0xD8));
}

/** Averages of 2x2 samples from the sums of two rows: 16 words, in each lane of a's and b's columns 0 2 1 3. */
static inline __m256i Average(__m256i a, __m256i b, __m256i bias) {
  const __m256i even = _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), 0x88));
  const __m256i odd = _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), 0xDD));
  return _mm256_srli_epi16(_mm256_sub_epi16(bias, _mm256_add_epi16(even, odd)), 2);
}

enum { Step = 32 };
typedef __m256i Bias;

/** With what four values of chroma that are taken from 127 leave. */
static inline Bias Bias_Of(int32_t even, int32_t odd) {
  const int32_t inEven = 4 * 127 + even, inOdd = 4 * 127 + odd;
  const __m128i lane = _mm_setr_epi32(inEven << 16 | inEven, inOdd << 16 | inOdd, inEven << 16 | inEven, inOdd << 16 | inOdd);
  return Both_Lanes(lane);
}

static inline void Convert_Step(const uint8_t* upper, const uint8_t* lower, uint8_t* yUpper, uint8_t* yLower, uint8_t* cb,
                                uint8_t* cr, Bias bias) {
  const ConvertedSixteen a = Convert_Sixteen(upper, lower), b = Convert_Sixteen(upper + 48, lower + 48);
  Store_Luma(yUpper, a.yUpper, b.yUpper);
  Store_Luma(yLower, a.yLower, b.yLower);
  const __m256i blue = Average(a.blue, b.blue, bias), red = Average(a.red, b.red, bias);
  const __m256i order = Both_Lanes(_mm_setr_epi8(0, 2, 1, 3, 4, 6, 5, 7, 8, 10, 9, 11, 12, 14, 13, 15));
  const __m256i packed = _mm256_shuffle_epi8(_mm256_packus_epi16(blue, red), order);
  const __m256i sorted = _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
  _mm_storeu_si128((__m128i*)cb, _mm256_castsi256_si128(sorted));
  _mm_storeu_si128((__m128i*)cr, _mm256_extracti128_si256(sorted, 1));
}

#include "kernels/to_planes_body.h"

void Use_To_Planes_Avx2(Kernels* record) { record->toPlanes = Convert_Rows; }
