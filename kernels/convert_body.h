/* What the converters of the vector levels share.
 *
 * The colour tables hold multiples of the sample. Multiplication gives each of the 256 exactly. An offset needs more than a byte,
 * so it comes as two: what to add to luma and what to subtract. Saturating sums with both are the clamp. */

/** Pairs of pixels in a block, which has one vector of luma in each row. */
static const int32_t BlockPairs = sizeof(Vector) / 2;

namespace {

/** What chroma adds to luma, by colour: a byte a pair, in the lower half of each lane what to add, in the upper half what to
 *  subtract. */
struct PairOffsets {
  Vector blue, green, red;
};

/** Of one colour, a byte a pixel. */
struct Offset {
  Vector more, less;
};

}  // namespace

/** Samples about 0, times 256. */
static Vector Centred(const uint8_t* samples) {
  return Interleave_Low_8(Broadcast_8(0), Load_Halves(samples)) ^ Broadcast_16(-32768);
}

/** The product with factor / 16384, rounded. */
static Vector Scaled(Vector centred, int16_t factor) {
  return Shift_Right_16(Add_16(Multiply_High_16(centred, Broadcast_16(factor)), Broadcast_16(32)), 6);
}

/** Green's factors for Cb and Cr, in 32768ths. */
static Vector Green_Factors() { return Broadcast_Pair_16(-11277, -23401); }

/** Both products in one sum, rounded down; plus 1, as two halves are rounded. */
static Vector Green(Vector cb, Vector cr) {
  const Vector low = Multiply_Add_Pairs_16(Interleave_Low_16(cb, cr), Green_Factors());
  const Vector high = Multiply_Add_Pairs_16(Interleave_High_16(cb, cr), Green_Factors());
  return Add_16(Pack_Saturate_32(Shift_Right_32(low, 23), Shift_Right_32(high, 23)), Broadcast_16(1));
}

static Vector Split(Vector offset) { return Pack_Saturate_Unsigned_16(offset, Subtract_16(Broadcast_16(0), offset)); }

static PairOffsets Chroma_Offsets(const uint8_t* cb, const uint8_t* cr) {
  const Vector u = Centred(cb), v = Centred(cr);
  return {Split(Scaled(u, 29033)), Split(Green(u, v)), Split(Scaled(v, 22970))};
}

/** For both pixels of a pair. */
static Offset Twice(Vector offset) { return {Interleave_Low_8(offset, offset), Interleave_High_8(offset, offset)}; }

static Vector Add(Vector luma, const Offset& offset) {
  return Subtract_Saturate_8(Add_Saturate_8(luma, offset.more), offset.less);
}

/** Words, with 6 bits of green or 5. A shift moves bits over from the other byte of a word; the masks remove those too. */
template <int32_t greenBits>
static void Put_Words(uint8_t* out, Vector blue, Vector green, Vector red) {
  const Vector lowFive = Shift_Right_Unsigned_16(blue & Broadcast_8(-8), 3);
  const Vector lower = lowFive | (Shift_Left_16(green, greenBits - 3) & Broadcast_8(-32));
  Vector upper = (red & Broadcast_8(-8)) | (Shift_Right_Unsigned_16(green, 5) & Broadcast_8(7));
  if (greenBits == 5) upper = Shift_Right_Unsigned_16(upper, 1) & Broadcast_8(127);
  Store_Lanes(out, Interleave_Low_8(lower, upper), Interleave_High_8(lower, upper));
}

template <int32_t greenBits>
static void Block_Words(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr, uint8_t* outUpper,
                        uint8_t* outLower) {
  const PairOffsets offsets = Chroma_Offsets(cb, cr);
  const Offset blue = Twice(offsets.blue), green = Twice(offsets.green), red = Twice(offsets.red);
  const Vector upper = Load(yUpper), lower = Load(yLower);
  Put_Words<greenBits>(outUpper, Add(upper, blue), Add(upper, green), Add(upper, red));
  Put_Words<greenBits>(outLower, Add(lower, blue), Add(lower, green), Add(lower, red));
}

/** Converts BlockPairs. */
using ConvertBlock = void (*)(const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                              uint8_t* outUpper, uint8_t* outLower);

/** Converts rows block by block. The last block ends with the row and overlaps the one before; a row shorter than a block goes to
 *  the plain kernel. */
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
