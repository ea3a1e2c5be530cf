/* The converters in vectors of 16 pairs. Pixels of 24 and 32 bits are made at once in the order of memory: byte shuffles lay out
 * luma and offsets so that each byte of a pixel has its own, and their sums are the pixels. */
#include "kernels/kernels.h"

#include <immintrin.h>

typedef __m256i V;
#define OP(name) _mm256_##name

static __m128i Load_16(const uint8_t* from) { return _mm_loadu_si128((const __m128i*)from); }

static V Load(const uint8_t* from) { return _mm256_loadu_si256((const V*)from); }

static V Load_Half(const uint8_t* from) { return _mm256_permute4x64_epi64(_mm256_castsi128_si256(Load_16(from)), 0x50); }

static void Store_Lanes(uint8_t* to, V lower, V upper) {
  _mm256_storeu_si256((V*)to, _mm256_permute2x128_si256(lower, upper, 0x20));
  _mm256_storeu_si256((V*)(to + 32), _mm256_permute2x128_si256(lower, upper, 0x31));
}

#include "kernels/convert_body.h"

/** Of a byte shuffle: for each byte its source in the same lane, or 0x80 for zero. */
struct Selectors {
  alignas(32) uint8_t from[32];
};

/** Which pairs of a block stand in the lanes of a vector that works on four of them a lane. */
struct LanePairs {
  uint8_t pair[2][4];
};

/** From 8 pairs of Cb and Cr bytes, in turn, to the upper bytes of words. */
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

static V Pick(V from, const Selectors& selectors) { return _mm256_shuffle_epi8(from, *(const V*)selectors.from); }

static V Load_Twice(const uint8_t* from) { return _mm256_broadcastsi128_si256(Load_16(from)); }

/** Samples about 0 from bytes about 0, times 2, as words: Cb and Cr in turn. */
static V Doubled(V bytes, const Selectors& selectors) { return _mm256_srai_epi16(Pick(bytes, selectors), 7); }

/** Offsets of blue and red in turn. */
static V Blue_Red(V doubled) { return _mm256_mulhrs_epi16(doubled, _mm256_set1_epi32(22970 << 16 | 29033)); }

/** Green offsets less 1 in the upper half of double words; what is below is of no use. */
static V Green_Less_1(V doubled) { return _mm256_madd_epi16(doubled, _mm256_set1_epi32(GreenFactors)); }

/** Those of two vectors, in turn. */
static V Green_Pair(V first, V second) {
  return _mm256_blend_epi16(_mm256_srli_epi32(Green_Less_1(first), 16), Green_Less_1(second), 0xAA);
}

/** What to add and what to take off, of blue and red and then of green. */
static Offset Lane_Offset(V doubled, V greenLess1) {
  const V blueRed = Blue_Red(doubled);
  return {_mm256_packus_epi16(blueRed, _mm256_add_epi16(greenLess1, _mm256_set1_epi16(1))),
          _mm256_packus_epi16(_mm256_sub_epi16(_mm256_setzero_si256(), blueRed), greenLess1 ^ _mm256_set1_epi16(-1))};
}

static Offset Laid_Out(const Offset& lanes, const Selectors& selectors) {
  return {Pick(lanes.more, selectors), Pick(lanes.less, selectors)};
}

template <bool stream>
static void Store(uint8_t* to, V vector) {
  if (stream) {
    _mm256_stream_si256((V*)to, vector);
  } else {
    _mm256_storeu_si256((V*)to, vector);
  }
}

template <bool stream>
static void Put_Rgb24(uint8_t* out, const uint8_t* y, const Offset* offsets) {
  Store<stream>(out, Add(Pick(Load_Twice(y), luma24[0]), offsets[0]));
  Store<stream>(out + 32, Add(Pick(Load(y), luma24[1]), offsets[1]));
  Store<stream>(out + 64, Add(Pick(Load_Twice(y + 16), luma24[2]), offsets[2]));
}

template <bool stream>
static void Block_Rgb24(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const V half = _mm256_set1_epi8(-128), u = Load_Twice(cb) ^ half, v = Load_Twice(cr) ^ half;
  const V low = _mm256_unpacklo_epi8(u, v), high = _mm256_unpackhi_epi8(u, v);
  const V first = Doubled(low, chroma24[0]), last = Doubled(high, chroma24[2]);
  const V second = Doubled(_mm256_blend_epi32(low, high, 0xF0), chroma24[1]);
  const V green = Green_Pair(first, second);
  const V lastGreen = Green_Less_1(last);
  const Offset offsets[3] = {Laid_Out(Lane_Offset(first, green), offset24[0]), Laid_Out(Lane_Offset(second, green), offset24[1]),
                             Laid_Out(Lane_Offset(last, lastGreen), offset24[2])};
  Put_Rgb24<stream>(outUpper, yUpper, offsets);
  Put_Rgb24<stream>(outLower, yLower, offsets);
}

template <bool stream>
static void Put_Rgb32(uint8_t* out, const uint8_t* y, const Offset* offsets) {
  const V left = Load_Twice(y), right = Load_Twice(y + 16);
  Store<stream>(out, Add(Pick(left, luma32[0]), offsets[0]));
  Store<stream>(out + 32, Add(Pick(left, luma32[1]), offsets[1]));
  Store<stream>(out + 64, Add(Pick(right, luma32[0]), offsets[2]));
  Store<stream>(out + 96, Add(Pick(right, luma32[1]), offsets[3]));
}

template <bool stream>
static void Block_Rgb32(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const V half = _mm256_set1_epi8(-128), u = Load_Twice(cb) ^ half, v = Load_Twice(cr) ^ half;
  const V left = Doubled(_mm256_unpacklo_epi8(u, v), chroma32), right = Doubled(_mm256_unpackhi_epi8(u, v), chroma32);
  const V green = Green_Pair(left, right);
  const Offset leftOffset = Lane_Offset(left, green), rightOffset = Lane_Offset(right, green);
  const Offset offsets[4] = {Laid_Out(leftOffset, offset32[0]), Laid_Out(leftOffset, offset32[1]),
                             Laid_Out(rightOffset, offset32[2]), Laid_Out(rightOffset, offset32[3])};
  Put_Rgb32<stream>(outUpper, yUpper, offsets);
  Put_Rgb32<stream>(outLower, yLower, offsets);
}

/** Convert past the cache, for rows that start where a vector can be streamed; others, and what is behind the last whole block,
 *  go to the normal kernel. */
template <ConvertBlock block, ConvertRowsKernel normal, int32_t bytes>
static void Stream(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                   uint8_t* outUpper, uint8_t* outLower, int32_t pairs) {
  if (pairs < BlockPairs || ((uintptr_t)outUpper | (uintptr_t)outLower) % sizeof(V) != 0) {
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
