/* The converters in vectors of 16 pairs. Pixels of 24 and 32 bits are made in the order of memory at once: byte shuffles bring
 * luma and offsets to the places of a pixel's bytes, and the sums are the pixels. */
#include "kernels/kernels.h"
#include "kernels/vector_avx2_body.h"
// Uses the verbs above.
#include "kernels/convert_body.h"

/** For each byte of a byte shuffle: its source in the same lane, or 0x80 for zero. */
struct Selectors {
  alignas(32) uint8_t from[32];
};

/** The pairs of a block that each lane of a vector works on, four a lane. */
struct LanePairs {
  uint8_t pair[2][4];
};

/** From 8 pairs' bytes of Cb and Cr, in turn, to the upper bytes of words. */
static constexpr Selectors Chroma_Selectors(const LanePairs& lanes) {
  Selectors selectors = {};
  for (int32_t i = 0; i < 32; ++i) {
    const int32_t pair = lanes.pair[i / 16][i % 16 / 4];
    selectors.from[i] = (uint8_t)(i % 2 == 0 ? 0x80 : pair % 8 * 2 + i % 4 / 2);
  }
  return selectors;
}

/** From 16 luma samples to the bytes of a row's `vector`th vector of pixels. */
static constexpr Selectors Luma_Selectors(int32_t bytes, int32_t vector) {
  Selectors selectors = {};
  for (int32_t i = 0; i < 32; ++i) {
    const int32_t place = 32 * vector + i;
    selectors.from[i] = (uint8_t)(place % bytes == 3 ? 0x80 : place / bytes % 16);
  }
  return selectors;
}

/** From four pairs' offsets, blue and red in turn and then green at every second byte from `green` on, to the same bytes. */
static constexpr Selectors Offset_Selectors(int32_t bytes, int32_t vector, const LanePairs& lanes, int32_t green) {
  Selectors selectors = {};
  for (int32_t i = 0; i < 32; ++i) {
    const int32_t place = 32 * vector + i, color = place % bytes;
    int32_t slot = 0;
    while (lanes.pair[i / 16][slot] != place / bytes / 2) ++slot;
    selectors.from[i] = (uint8_t)(color == 3 ? 0x80 : color == 1 ? green + 2 * slot : 2 * slot + color / 2);
  }
  return selectors;
}

static constexpr LanePairs pairs24[3] = {
    {{{0, 1, 2, 3}, {2, 3, 4, 5}}}, {{{4, 5, 6, 7}, {8, 9, 10, 11}}}, {{{10, 11, 12, 13}, {12, 13, 14, 15}}}};
static constexpr LanePairs pairs32[2] = {{{{0, 1, 4, 5}, {2, 3, 6, 7}}}, {{{8, 9, 12, 13}, {10, 11, 14, 15}}}};

static constexpr Selectors chroma24[3] = {Chroma_Selectors(pairs24[0]), Chroma_Selectors(pairs24[1]),
                                          Chroma_Selectors(pairs24[2])};
static constexpr Selectors chroma32 = Chroma_Selectors(pairs32[0]);
static constexpr Selectors luma24[3] = {Luma_Selectors(3, 0), Luma_Selectors(3, 1), Luma_Selectors(3, 2)};
static constexpr Selectors luma32[2] = {Luma_Selectors(4, 0), Luma_Selectors(4, 1)};
static constexpr Selectors offset24[3] = {Offset_Selectors(3, 0, pairs24[0], 8), Offset_Selectors(3, 1, pairs24[1], 9),
                                          Offset_Selectors(3, 2, pairs24[2], 9)};
static constexpr Selectors offset32[4] = {Offset_Selectors(4, 0, pairs32[0], 8), Offset_Selectors(4, 1, pairs32[0], 8),
                                          Offset_Selectors(4, 2, pairs32[1], 9), Offset_Selectors(4, 3, pairs32[1], 9)};

static Vector Pick(Vector from, const Selectors& selectors) { return Pick_8(from, *(const Vector*)selectors.from); }

/** Words of Cb and Cr in turn, about 0, times 2; from bytes about 0. */
static Vector Doubled(Vector bytes, const Selectors& selectors) { return Shift_Right_16(Pick(bytes, selectors), 7); }

/** Offsets of blue and red in turn. */
static Vector Blue_Red(Vector doubled) { return _mm256_mulhrs_epi16(doubled, Broadcast_32(22970 << 16 | 29033)); }

/** Green offsets less 1 in the upper half of double words; the lower half means nothing. */
static Vector Green_Less_1(Vector doubled) { return Multiply_Add_Pairs_16(doubled, Green_Factors()); }

/** Those of two vectors, in turn. */
static Vector Green_Pair(Vector first, Vector second) {
  return _mm256_blend_epi16(Shift_Right_Unsigned_32(Green_Less_1(first), 16), Green_Less_1(second), 0xAA);
}

/** What to add and what to subtract, for blue and red and then for green. */
static Offset Lane_Offset(Vector doubled, Vector greenLess1) {
  const Vector blueRed = Blue_Red(doubled);
  return {Pack_Saturate_Unsigned_16(blueRed, Add_16(greenLess1, Broadcast_16(1))),
          Pack_Saturate_Unsigned_16(Subtract_16(Broadcast_16(0), blueRed), greenLess1 ^ Broadcast_16(-1))};
}

static Offset Laid_Out(const Offset& lanes, const Selectors& selectors) {
  return {Pick(lanes.more, selectors), Pick(lanes.less, selectors)};
}

template <bool stream>
static void Put(uint8_t* to, Vector pixels) {
  if (stream) {
    _mm256_stream_si256((Vector*)to, pixels);
  } else {
    Store(to, pixels);
  }
}

template <bool stream>
static void Put_Rgb24(uint8_t* out, const uint8_t* y, const Offset* offsets) {
  Put<stream>(out, Add(Pick(Load_Each_Lane(y), luma24[0]), offsets[0]));
  Put<stream>(out + 32, Add(Pick(Load(y), luma24[1]), offsets[1]));
  Put<stream>(out + 64, Add(Pick(Load_Each_Lane(y + 16), luma24[2]), offsets[2]));
}

template <bool stream>
static void Block_Rgb24(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const Vector half = Broadcast_8(-128), u = Load_Each_Lane(cb) ^ half, v = Load_Each_Lane(cr) ^ half;
  const Vector low = Interleave_Low_8(u, v), high = Interleave_High_8(u, v);
  const Vector first = Doubled(low, chroma24[0]), last = Doubled(high, chroma24[2]);
  const Vector second = Doubled(_mm256_blend_epi32(low, high, 0xF0), chroma24[1]);
  const Vector green = Green_Pair(first, second);
  const Vector lastGreen = Green_Less_1(last);
  const Offset offsets[3] = {Laid_Out(Lane_Offset(first, green), offset24[0]), Laid_Out(Lane_Offset(second, green), offset24[1]),
                             Laid_Out(Lane_Offset(last, lastGreen), offset24[2])};
  Put_Rgb24<stream>(outUpper, yUpper, offsets);
  Put_Rgb24<stream>(outLower, yLower, offsets);
}

template <bool stream>
static void Put_Rgb32(uint8_t* out, const uint8_t* y, const Offset* offsets) {
  const Vector left = Load_Each_Lane(y), right = Load_Each_Lane(y + 16);
  Put<stream>(out, Add(Pick(left, luma32[0]), offsets[0]));
  Put<stream>(out + 32, Add(Pick(left, luma32[1]), offsets[1]));
  Put<stream>(out + 64, Add(Pick(right, luma32[0]), offsets[2]));
  Put<stream>(out + 96, Add(Pick(right, luma32[1]), offsets[3]));
}

template <bool stream>
static void Block_Rgb32(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const Vector half = Broadcast_8(-128), u = Load_Each_Lane(cb) ^ half, v = Load_Each_Lane(cr) ^ half;
  const Vector left = Doubled(Interleave_Low_8(u, v), chroma32), right = Doubled(Interleave_High_8(u, v), chroma32);
  const Vector green = Green_Pair(left, right);
  const Offset leftOffset = Lane_Offset(left, green), rightOffset = Lane_Offset(right, green);
  const Offset offsets[4] = {Laid_Out(leftOffset, offset32[0]), Laid_Out(leftOffset, offset32[1]),
                             Laid_Out(rightOffset, offset32[2]), Laid_Out(rightOffset, offset32[3])};
  Put_Rgb32<stream>(outUpper, yUpper, offsets);
  Put_Rgb32<stream>(outLower, yLower, offsets);
}

/** Convert past the cache, for rows whose addresses allow vectors to be streamed. Other rows, and what follows the last whole
 *  block, go to the normal kernel. */
template <ConvertBlock block, ConvertRowsKernel normal, int32_t bytes>
static void Stream(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                   uint8_t* outUpper, uint8_t* outLower, int32_t pairs) {
  if (pairs < BlockPairs || ((uintptr_t)outUpper | (uintptr_t)outLower) % sizeof(Vector) != 0) {
    return normal(tables, yUpper, yLower, cb, cr, outUpper, outLower, pairs);
  }
  const ptrdiff_t last = pairs - BlockPairs;
  for (ptrdiff_t i = 0; i <= last; i += BlockPairs) {
    block(yUpper + 2 * i, yLower + 2 * i, cb + i, cr + i, outUpper + 2 * bytes * i, outLower + 2 * bytes * i);
  }
  if (pairs % BlockPairs == 0) return;
  normal(tables, yUpper + 2 * last, yLower + 2 * last, cb + last, cr + last, outUpper + 2 * bytes * last,
         outLower + 2 * bytes * last, BlockPairs);
}

static void End_Stream() { _mm_sfence(); }

void Use_Convert_Avx2(Kernels* record) {
  record->toRgb24 = Convert<Block_Rgb24<false>, To_Rgb24_Plain, 3>;
  record->toRgb24Stream = Stream<Block_Rgb24<true>, Convert<Block_Rgb24<false>, To_Rgb24_Plain, 3>, 3>;
  record->toRgb32 = Convert<Block_Rgb32<false>, To_Rgb32_Plain, 4>;
  record->toRgb32Stream = Stream<Block_Rgb32<true>, Convert<Block_Rgb32<false>, To_Rgb32_Plain, 4>, 4>;
  record->endStream = End_Stream;
  record->toRgb565 = Convert<Block_Words<6>, To_Rgb565_Plain, 2>;
  record->toRgb555 = Convert<Block_Words<5>, To_Rgb555_Plain, 2>;
}
