/* Dithering in vectors, at every vector level.
 *
 * A quantiser is a sum with an upper and a lower limit. Saturating sums of bytes do that: one that saturates at 255 is the upper
 * limit, one that saturates at 0 the lower. */

/** Pairs of pixels in a block, which has one vector of luma. */
static const int32_t BlockPairs = sizeof(Vector) / 2;

/** Chroma quantised to 0 to 3, in bits 4 and 5; the bits below mean nothing. dither: plus 152. */
static Vector Quantised_Chroma(const uint8_t* samples, Vector dither) {
  const Vector whole = Load_Halves(samples), twice = Interleave_Low_8(whole, whole);
  const Vector half = Shift_Right_Unsigned_16(twice, 1) & Broadcast_8(127);
  return Subtract_Saturate_8(Add_Saturate_8(half, dither), Broadcast_8(192));
}

/** Dithers BlockPairs. */
static void Block(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, Vector dither, uint8_t* out) {
  const Vector chromaDither = Add_8(dither, Broadcast_8(152)), lumaDither = Add_8(dither, Broadcast_8(8));
  const Vector u = Shift_Right_Unsigned_16(Quantised_Chroma(cb, chromaDither), 2) & Broadcast_8(0x0C);
  const Vector v = Shift_Right_Unsigned_16(Quantised_Chroma(cr, chromaDither), 4) & Broadcast_8(0x03);
  // Less 0x10, so that the lower limit is 0.
  const Vector luma = Subtract_Saturate_8(Add_Saturate_8(Load(y), lumaDither), Broadcast_8(32)) & Broadcast_8(0xF0);
  Store(out, Add_8(luma | u | v, Broadcast_8(0x10)));
}

/** The four values in turn, beginning with the first or the third. */
static Vector Dither_Values(const uint8_t* matrixRow, bool fromThird) {
  const uint32_t low = (uint32_t)(matrixRow[0] | matrixRow[1] << 8), high = (uint32_t)(matrixRow[2] | matrixRow[3] << 8);
  return Broadcast_32((int32_t)(fromThird ? low << 16 | high : high << 16 | low));
}

/** The last block ends with the row and overlaps the one before. A row shorter than a block goes to the plain kernel. */
static void Dither_Row(const DitherTables* tables, const uint8_t* y, const uint8_t* cb, const uint8_t* cr,
                       const uint8_t* matrixRow, uint8_t* out, int32_t pairs) {
  const ptrdiff_t last = pairs - BlockPairs;
  if (last < 0) return Dither_Row_Plain(tables, y, cb, cr, matrixRow, out, pairs);
  const Vector dither = Dither_Values(matrixRow, false);
  for (ptrdiff_t i = 0; i < last; i += BlockPairs) Block(y + 2 * i, cb + i, cr + i, dither, out + 2 * i);
  Block(y + 2 * last, cb + last, cr + last, Dither_Values(matrixRow, last % 2 != 0), out + 2 * last);
}
