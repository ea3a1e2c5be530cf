/* Pixels to 4:2:0 planes, 16 of each row at a time. A pixel is a sum of two pairs of products: blue and red, green and a constant
 * that gives the half for rounding. */
#include "kernels/kernels.h"
#include "kernels/vector_sse2_body.h"

namespace {

/** Every second of eight pixels. */
struct Four {
  Vector blueRed;
  Vector green;  ///< With -32768 beside it.
};

struct Eight {
  Four even, odd;
};

}  // namespace

static inline Four Split_Four(Vector pixels) {
  const Vector green = Shift_Right_Unsigned_32(pixels, 8) & Broadcast_32(0xFF);
  return {pixels & Broadcast_32(0xFF00FF), green | Broadcast_32((int)0x80000000)};
}

static inline Vector Load_Two(const uint8_t* low, const uint8_t* high) {
  return _mm_castpd_si128(_mm_loadh_pd(_mm_castsi128_pd(Load_Halves(low)), (const double*)high));
}

static inline Vector First_Of_Each(Vector a, Vector b) {
  return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), 0x88));
}

/** Each half of the two begins with the next two pixels. */
static inline Eight Split_Eight(Vector a, Vector b) {
  return {Split_Four(First_Of_Each(a, b)), Split_Four(First_Of_Each(_mm_srli_epi64(a, 24), _mm_srli_epi64(b, 24)))};
}

static inline Eight Load_Eight(const uint8_t* pixels) {
  return Split_Eight(Load_Two(pixels, pixels + 6), Load_Two(pixels + 12, pixels + 18));
}

/** Reads no byte after the pixels. */
static inline Eight Load_Last_Eight(const uint8_t* pixels) {
  const Vector last = _mm_srli_epi64(Load_Halves(pixels + 16), 16);
  return Split_Eight(Load_Two(pixels, pixels + 6), Interleave_Low_64(Load_Halves(pixels + 12), last));
}

static inline Vector Weighted(const Four& four, Vector blueRed, Vector green) {
  return Add_32(Multiply_Add_Pairs_16(four.blueRed, blueRed), Multiply_Add_Pairs_16(four.green, green));
}

static inline Vector Luma(const Eight& pixels) {
  // Green's factor is 65536 too small. Adding green to the upper half makes up for that.
  const Vector blueRed = Broadcast_Pair_16(7471, 19595), green = Broadcast_Pair_16(38470 - 65536, -1);
  const Vector even = Shift_Right_Unsigned_32(Weighted(pixels.even, blueRed, green), 16);
  const Vector odd = Weighted(pixels.odd, blueRed, green) & Broadcast_32((int)0xFFFF0000);
  const Vector greens = (pixels.even.green & Broadcast_32(0xFF)) | Shift_Left_32(pixels.odd.green, 16);
  return Add_16(even | odd, greens);
}

/** Sums of the upper halves of two neighbours each. */
static inline Vector Upper_Halves(const Eight& pixels, Vector blueRed, Vector green) {
  return Add_32(Shift_Right_32(Weighted(pixels.even, blueRed, green), 16),
                Shift_Right_32(Weighted(pixels.odd, blueRed, green), 16));
}

/** 127 less Cb and 127 less Cr, summed over two neighbours. */
static inline Vector Blue_Chroma(const Eight& pixels) {
  return Upper_Halves(pixels, Broadcast_Pair_16(-32768, 11059), Broadcast_Pair_16(21709, 1));
}
static inline Vector Red_Chroma(const Eight& pixels) {
  return Upper_Halves(pixels, Broadcast_Pair_16(5329, -32768), Broadcast_Pair_16(27439, 1));
}

enum { Step = 16 };
typedef Vector Bias;

/** Plus four times 127, as chroma comes as 127 less its value. */
static inline Bias Bias_Of(int32_t even, int32_t odd) { return Broadcast_Pair_16(4 * 127 + even, 4 * 127 + odd); }

/** Of eight pixels in each of two rows: luma in words, and chroma less 127, negated and summed over 2x2 samples. */
struct ConvertedEight {
  Vector yUpper, yLower, blue, red;
};

static inline ConvertedEight Convert_Eight(const Eight& upper, const Eight& lower) {
  return {Luma(upper), Luma(lower), Add_32(Blue_Chroma(upper), Blue_Chroma(lower)), Add_32(Red_Chroma(upper), Red_Chroma(lower))};
}

static inline Vector Average(Vector a, Vector b, Bias bias) {
  return Shift_Right_Unsigned_16(Subtract_16(bias, Pack_Saturate_32(a, b)), 2);
}

static inline void Convert_Step(const uint8_t* upper, const uint8_t* lower, uint8_t* yUpper, uint8_t* yLower, uint8_t* cb,
                                uint8_t* cr, Bias bias) {
  const ConvertedEight a = Convert_Eight(Load_Eight(upper), Load_Eight(lower));
  const ConvertedEight b = Convert_Eight(Load_Last_Eight(upper + 24), Load_Last_Eight(lower + 24));
  Store(yUpper, Pack_Saturate_Unsigned_16(a.yUpper, b.yUpper));
  Store(yLower, Pack_Saturate_Unsigned_16(a.yLower, b.yLower));
  const Vector packed = Pack_Saturate_Unsigned_16(Average(a.blue, b.blue, bias), Average(a.red, b.red, bias));
  Store_Low_Half(cb, packed);
  Store_Low_Half(cr, Interleave_High_64(packed, packed));
}

#include "kernels/to_planes_body.h"

void Use_To_Planes_Sse2(Kernels* record) { record->toPlanes = Convert_Rows; }
