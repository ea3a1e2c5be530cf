/* The converters in vectors of 8 pairs. There is no byte shuffle: three bytes a pixel are woven by words, then by double words.
 */
#include "kernels/kernels.h"
#include "kernels/vector_sse2_body.h"
// Uses the verbs above.
#include "kernels/convert_body.h"

/** Two of the low and two of the high vector's double words, by their numbers. */
#define SHUFFLE_DWORDS(low, high, a, b, c, d) \
  _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(low), _mm_castsi128_ps(high), _MM_SHUFFLE(d, c, b, a)))

/** Offsets for the three words of a pair of pixels: blue and green; red and the next blue; green and red. */
struct WovenOffsets {
  Offset first, second, third;
};

static Offset Weave(Vector low, Vector high) { return {Interleave_Low_8(low, high), Interleave_High_8(low, high)}; }

/** Stores double words of the first, second and third words of a pair's pixels in turn. */
static void Put_Woven(uint8_t* out, Vector first, Vector second, Vector third) {
  const Vector low12 = Interleave_Low_32(first, second), low23 = Interleave_Low_32(second, third);
  const Vector high12 = Interleave_High_32(first, second), high23 = Interleave_High_32(second, third);
  const Vector between = SHUFFLE_DWORDS(third, first, 0, 2, 1, 3);
  Store(out, SHUFFLE_DWORDS(low12, between, 0, 1, 0, 2));
  Store(out + 16, SHUFFLE_DWORDS(low23, high12, 2, 3, 0, 1));
  Store(out + 32, SHUFFLE_DWORDS(between, high23, 1, 3, 2, 3));
}

static void Put_Rgb24(uint8_t* out, Vector luma, const WovenOffsets& offsets) {
  const Vector even = Broadcast_16(0xFF), evenWords = Broadcast_32(0xFFFF);
  const Vector first = Add((luma & even) | Shift_Left_16(luma, 8), offsets.first);
  const Vector second = Add(luma, offsets.second);
  const Vector third = Add(Clear_Where(even, luma) | Shift_Right_Unsigned_16(luma, 8), offsets.third);
  Put_Woven(out, (first & evenWords) | Shift_Left_32(second, 16), (third & evenWords) | Clear_Where(evenWords, first),
            Shift_Right_Unsigned_32(second, 16) | Clear_Where(evenWords, third));
}

static void Block_Rgb24(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const PairOffsets pair = Chroma_Offsets(cb, cr);
  const WovenOffsets offsets = {Weave(pair.blue, pair.green), Weave(pair.red, pair.blue), Weave(pair.green, pair.red)};
  Put_Rgb24(outUpper, Load(yUpper), offsets);
  Put_Rgb24(outLower, Load(yLower), offsets);
}

static void Put_Rgb32(uint8_t* out, Vector blue, Vector green, Vector red) {
  const Vector zero = Broadcast_8(0);
  const Vector lowBlueGreen = Interleave_Low_8(blue, green), lowRed = Interleave_Low_8(red, zero);
  const Vector highBlueGreen = Interleave_High_8(blue, green), highRed = Interleave_High_8(red, zero);
  Store(out, Interleave_Low_16(lowBlueGreen, lowRed));
  Store(out + 16, Interleave_High_16(lowBlueGreen, lowRed));
  Store(out + 32, Interleave_Low_16(highBlueGreen, highRed));
  Store(out + 48, Interleave_High_16(highBlueGreen, highRed));
}

static void Block_Rgb32(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const PairOffsets offsets = Chroma_Offsets(cb, cr);
  const Offset blue = Twice(offsets.blue), green = Twice(offsets.green), red = Twice(offsets.red);
  const Vector upper = Load(yUpper), lower = Load(yLower);
  Put_Rgb32(outUpper, Add(upper, blue), Add(upper, green), Add(upper, red));
  Put_Rgb32(outLower, Add(lower, blue), Add(lower, green), Add(lower, red));
}

/** At this level the work takes longer than the memory, so that streaming gains nothing. */
void Use_Convert_Sse2(Kernels* record) {
  record->toRgb24 = record->toRgb24Stream = Convert<Block_Rgb24, To_Rgb24_Plain, 3>;
  record->toRgb32 = record->toRgb32Stream = Convert<Block_Rgb32, To_Rgb32_Plain, 4>;
  record->toRgb565 = Convert<Block_Words<6>, To_Rgb565_Plain, 2>;
  record->toRgb555 = Convert<Block_Words<5>, To_Rgb555_Plain, 2>;
}
