/* Dithering in vectors; part of dither_sse2.cpp and dither_avx2.cpp. Those define V, a vector; OP(name), its intrinsic of that
 * name; Load and Store, of any address; Load_Half, half as many bytes, in order at the lower half of each lane.
 *
 * A quantiser is a sum kept within limits, and saturating sums of bytes do that: one that ends at 255 sets the upper limit, one
 * that ends at 0 the lower. */

/** Pairs a block: it has a vector of luma. */
static const int32_t BlockPairs = sizeof(V) / 2;

/** Levels of chroma, 0 to 3, in bits 4 and 5; the bits below are of no use. dither: plus 152. */
static V Chroma_Level(const uint8_t* samples, V dither) {
  const V whole = Load_Half(samples), twice = OP(unpacklo_epi8)(whole, whole);
  const V half = OP(srli_epi16)(twice, 1) & OP(set1_epi8)(127);
  return OP(subs_epu8)(OP(adds_epu8)(half, dither), OP(set1_epi8)((char)192));
}

/** Dithers BlockPairs. */
static void Block(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, V dither, uint8_t* out) {
  const V chromaDither = OP(add_epi8)(dither, OP(set1_epi8)((char)152)), lumaDither = OP(add_epi8)(dither, OP(set1_epi8)(8));
  const V u = OP(srli_epi16)(Chroma_Level(cb, chromaDither), 2) & OP(set1_epi8)(0x0C);
  const V v = OP(srli_epi16)(Chroma_Level(cr, chromaDither), 4) & OP(set1_epi8)(0x03);
  // One level lower, so that 0 is the least.
  const V luma = OP(subs_epu8)(OP(adds_epu8)(Load(y), lumaDither), OP(set1_epi8)(32)) & OP(set1_epi8)((char)0xF0);
  Store(out, OP(add_epi8)(luma | u | v, OP(set1_epi8)(0x10)));
}

/** The four values over and over, from the first or from the third on. */
static V Dither_Values(const uint8_t* matrixRow, bool fromThird) {
  const uint32_t low = (uint32_t)(matrixRow[0] | matrixRow[1] << 8), high = (uint32_t)(matrixRow[2] | matrixRow[3] << 8);
  return OP(set1_epi32)((int32_t)(fromThird ? low << 16 | high : high << 16 | low));
}

/** The last block ends with the row, over pixels that are there already. A row shorter than a block is left to the plain kernel.
 */
static void Dither_Row(const DitherTables* tables, const uint8_t* y, const uint8_t* cb, const uint8_t* cr,
                       const uint8_t* matrixRow, uint8_t* out, int32_t pairs) {
  const ptrdiff_t last = pairs - BlockPairs;
  if (last < 0) return Dither_Row_Plain(tables, y, cb, cr, matrixRow, out, pairs);
  const V dither = Dither_Values(matrixRow, false);
  for (ptrdiff_t i = 0; i < last; i += BlockPairs) Block(y + 2 * i, cb + i, cr + i, dither, out + 2 * i);
  Block(y + 2 * last, cb + last, cr + last, Dither_Values(matrixRow, last % 2 != 0), out + 2 * last);
}
