/* Pixels to 4:2:0 planes, 32 of each row at a time. A pixel is a sum of two pairs of products: blue and green, red and green. A
 * bit that is always set beside the second green gives the half for rounding. */
#include "kernels/kernels.h"
#include "kernels/vector_avx2_body.h"

namespace {

/** 16 pixels as (b, g) and (r, g - 32768), pixels 0 to 3 and 8 to 11 in `first`, the others in `second`. */
struct Pairs {
  Vector blueGreen, redGreen;
};

struct Sixteen {
  Pairs first, second;
};

}  // namespace

static inline Sixteen Load_Sixteen(const uint8_t* pixels) {
  const Vector rounding = Broadcast_32((int)0x80000000);
  const Vector blue0 = Each_Lane(_mm_setr_epi8(0, -1, 1, -1, 3, -1, 4, -1, 6, -1, 7, -1, 9, -1, 10, -1));
  const Vector red0 = Each_Lane(_mm_setr_epi8(2, -1, 1, -1, 5, -1, 4, -1, 8, -1, 7, -1, 11, -1, 10, -1));
  const Vector blue4 = Each_Lane(_mm_setr_epi8(4, -1, 5, -1, 7, -1, 8, -1, 10, -1, 11, -1, 13, -1, 14, -1));
  const Vector red4 = Each_Lane(_mm_setr_epi8(6, -1, 5, -1, 9, -1, 8, -1, 12, -1, 11, -1, 15, -1, 14, -1));
  const Vector a = Join_Lanes(Load_Lane(pixels), Load_Lane(pixels + 24));
  const Vector b = Join_Lanes(Load_Lane(pixels + 8), Load_Lane(pixels + 32));
  return {{Pick_8(a, blue0), Pick_8(a, red0) | rounding}, {Pick_8(b, blue4), Pick_8(b, red4) | rounding}};
}

static inline Vector Weighted(const Pairs& pairs, Vector blueGreen, Vector redGreen) {
  return Add_32(Multiply_Add_Pairs_16(pairs.blueGreen, blueGreen), Multiply_Add_Pairs_16(pairs.redGreen, redGreen));
}

/** The upper halves of the sums of 16 pixels, in each lane in the order 0 4 1 5 2 6 3 7. */
static inline Vector Upper_Halves(const Sixteen& pixels, Vector blueGreen, Vector redGreen) {
  const Vector first = Weighted(pixels.first, blueGreen, redGreen), second = Weighted(pixels.second, blueGreen, redGreen);
  return _mm256_blend_epi16(Shift_Right_Unsigned_32(first, 16), second, 0xAA);
}

static inline Vector Luma(const Sixteen& pixels) {
  // The bit beside g subtracts 32768 * 19235, which but for its half is a multiple of 65536.
  const Vector sums = Upper_Halves(pixels, Broadcast_Pair_16(7471, 38470 - 19235), Broadcast_Pair_16(19595, 19235));
  return Add_16(sums, Broadcast_16((19235 + 1) / 2));
}

/** 127 less Cb and 127 less Cr. */
static inline Vector Blue_Chroma(const Sixteen& pixels) {
  return Upper_Halves(pixels, Broadcast_Pair_16(-32768, 21709 - 1), Broadcast_Pair_16(11059, 1));
}
static inline Vector Red_Chroma(const Sixteen& pixels) {
  return Upper_Halves(pixels, Broadcast_Pair_16(5329, 27439 - 1), Broadcast_Pair_16(-32768, 1));
}

/** Of sixteen pixels in each of two rows: luma, and chroma less 127, negated and summed over both rows. */
struct ConvertedSixteen {
  Vector yUpper, yLower, blue, red;
};

static inline ConvertedSixteen Convert_Sixteen(const uint8_t* upper, const uint8_t* lower) {
  const Sixteen a = Load_Sixteen(upper), b = Load_Sixteen(lower);
  return {Luma(a), Luma(b), Add_16(Blue_Chroma(a), Blue_Chroma(b)), Add_16(Red_Chroma(a), Red_Chroma(b))};
}

static inline void Store_Luma(uint8_t* y, Vector a, Vector b) {
  const Vector order = Each_Lane(_mm_setr_epi8(0, 2, 4, 6, 1, 3, 5, 7, 8, 10, 12, 14, 9, 11, 13, 15));
  Store(y, Swap_Middle_64(Pick_8(Pack_Saturate_Unsigned_16(a, b), order)));
}

/** Double words of both vectors, in each lane two of a and two of b. */
#define PICK_32(a, b, places) _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), places))

/** Averages of 2x2 samples from the sums of two rows: 16 words, in each lane of a's and b's columns 0 2 1 3. */
static inline Vector Average(Vector a, Vector b, Vector bias) {
  const Vector even = PICK_32(a, b, 0x88), odd = PICK_32(a, b, 0xDD);
  return Shift_Right_Unsigned_16(Subtract_16(bias, Add_16(even, odd)), 2);
}

enum { Step = 32 };
typedef Vector Bias;

/** Plus four times 127, as chroma comes as 127 less its value. */
static inline Bias Bias_Of(int32_t even, int32_t odd) {
  const int32_t inEven = 4 * 127 + even, inOdd = 4 * 127 + odd;
  return Each_Lane(_mm_setr_epi32(inEven << 16 | inEven, inOdd << 16 | inOdd, inEven << 16 | inEven, inOdd << 16 | inOdd));
}

static inline void Convert_Step(const uint8_t* upper, const uint8_t* lower, uint8_t* yUpper, uint8_t* yLower, uint8_t* cb,
                                uint8_t* cr, Bias bias) {
  const ConvertedSixteen a = Convert_Sixteen(upper, lower), b = Convert_Sixteen(upper + 48, lower + 48);
  Store_Luma(yUpper, a.yUpper, b.yUpper);
  Store_Luma(yLower, a.yLower, b.yLower);
  const Vector blue = Average(a.blue, b.blue, bias), red = Average(a.red, b.red, bias);
  const Vector order = Each_Lane(_mm_setr_epi8(0, 2, 1, 3, 4, 6, 5, 7, 8, 10, 9, 11, 12, 14, 13, 15));
  const Vector packed = Pick_8(Pack_Saturate_Unsigned_16(blue, red), order);
  const Vector sorted = _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
  Store_Lane(cb, Low_Lane(sorted));
  Store_Lane(cr, High_Lane(sorted));
}

#include "kernels/to_planes_body.h"

void Use_To_Planes_Avx2(Kernels* record) { record->toPlanes = Convert_Rows; }
