/* What the converters of the vector levels share; part of convert_sse2.cpp and convert_avx2.cpp. Those define V, a vector;
 * OP(name), its intrinsic of that name; Load, a vector from any address; Load_Half, half as many bytes, in order at the lower
 * half of each lane; Store_Lanes, two vectors, the lower lanes of both and then the upper.
 *
 * The tables hold multiples of the sample, and multiplication gives them back: exactly, for each of the 256. An offset can leave
 * a byte, so it comes as two of them, what to add to luma and what to take off; saturating sums with both are the clamp. */

/** Pairs a block: it has a vector of luma in each row. */
static const int32_t BlockPairs = sizeof(V) / 2;

namespace {

/** What chroma adds to luma, by colour: in the lower half of each lane what to add, in the upper what to take off; a byte a pair.
 */
struct PairOffsets {
  V blue, green, red;
};

/** Of one colour, a byte a pixel. */
struct Offset {
  V more, less;
};

}  // namespace

/** Samples about 0, times 256. */
static V Centred(const uint8_t* samples) {
  return OP(unpacklo_epi8)(OP(set1_epi8)(0), Load_Half(samples)) ^ OP(set1_epi16)(-32768);
}

/** The product with factor / 16384, rounded. */
static V Scaled(V centred, int16_t factor) {
  return OP(srai_epi16)(OP(add_epi16)(OP(mulhi_epi16)(centred, OP(set1_epi16)(factor)), OP(set1_epi16)(32)), 6);
}

/** Of Cr and Cb in green, in 32768ths. */
static const int32_t GreenFactors = (int32_t)((uint32_t)-23401 << 16 | (-11277 & 0xFFFF));

/** Both products in one sum, rounded down; and 1, for there are two rounding halves. */
static V Green(V cb, V cr) {
  const V factors = OP(set1_epi32)(GreenFactors);
  const V low = OP(madd_epi16)(OP(unpacklo_epi16)(cb, cr), factors), high = OP(madd_epi16)(OP(unpackhi_epi16)(cb, cr), factors);
  return OP(add_epi16)(OP(packs_epi32)(OP(srai_epi32)(low, 23), OP(srai_epi32)(high, 23)), OP(set1_epi16)(1));
}

static V Split(V offset) { return OP(packus_epi16)(offset, OP(sub_epi16)(OP(set1_epi16)(0), offset)); }

static PairOffsets Chroma_Offsets(const uint8_t* cb, const uint8_t* cr) {
  const V u = Centred(cb), v = Centred(cr);
  return {Split(Scaled(u, 29033)), Split(Green(u, v)), Split(Scaled(v, 22970))};
}

/** For both pixels of a pair. */
static Offset Twice(V offset) { return {OP(unpacklo_epi8)(offset, offset), OP(unpackhi_epi8)(offset, offset)}; }

static V Add(V luma, const Offset& offset) { return OP(subs_epu8)(OP(adds_epu8)(luma, offset.more), offset.less); }

/** Words, with 6 bits of green or 5. A shift carries bits over from the other byte of a word; the masks take those too. */
template <int32_t greenBits>
static void Put_Words(uint8_t* out, V blue, V green, V red) {
  const V lowFive = OP(srli_epi16)(blue & OP(set1_epi8)(-8), 3);
  const V lower = lowFive | (OP(slli_epi16)(green, greenBits - 3) & OP(set1_epi8)(-32));
  V upper = (red & OP(set1_epi8)(-8)) | (OP(srli_epi16)(green, 5) & OP(set1_epi8)(7));
  if (greenBits == 5) upper = OP(srli_epi16)(upper, 1) & OP(set1_epi8)(127);
  Store_Lanes(out, OP(unpacklo_epi8)(lower, upper), OP(unpackhi_epi8)(lower, upper));
}

template <int32_t greenBits>
static void Block_Words(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const PairOffsets offsets = Chroma_Offsets(cb, cr);
  const Offset blue = Twice(offsets.blue), green = Twice(offsets.green), red = Twice(offsets.red);
  const V upper = Load(yUpper), lower = Load(yLower);
  Put_Words<greenBits>(outUpper, Add(upper, blue), Add(upper, green), Add(upper, red));
  Put_Words<greenBits>(outLower, Add(lower, blue), Add(lower, green), Add(lower, red));
}

/** Converts BlockPairs. */
using ConvertBlock = void (*)(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                              uint8_t* outUpper, uint8_t* outLower);

/** Converts rows block by block. The last one ends with the row, over pixels that are there already; what is shorter than a block
 *  is left to the plain kernel. */
template <ConvertBlock block, ConvertRowsKernel plain, int32_t bytes>
static void Convert(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                    uint8_t* outUpper, uint8_t* outLower, int32_t pairs) {
  const int32_t last = pairs - BlockPairs;
  if (last < 0) return plain(tables, yUpper, yLower, cb, cr, outUpper, outLower, pairs);
  for (int32_t i = 0; i < pairs; i += BlockPairs) {
    const ptrdiff_t at = i < last ? i : last;
    block(yUpper + 2 * at, yLower + 2 * at, cb + at, cr + at, outUpper + 2 * bytes * at, outLower + 2 * bytes * at);
  }
}
