/* The inverse transform in 16 bits, at every vector level. It is exact modulo 2^16 as long as whatever is multiplied fits
 * (StripWeightLimit), and the final clamp looks at no more. A vector holds a row of one block in each lane: of neighbours in
 * luma, or of Cb and Cr. Before this file a level defines Exceeds. */

namespace {

/** Arithmetic of a pass in 16 bits. x * c / 256, rounded towards minus infinity: c is split into a small multiple of 256 and a
 *  remainder, for which the high half of a product is enough. */
struct WordPass {
  INLINE Vector Add(Vector a, Vector b) { return Add_16(a, b); }
  INLINE Vector Subtract(Vector a, Vector b) { return Subtract_16(a, b); }
  INLINE Vector Times_362(Vector x) { return Add(x, Multiply_High_16(x, Broadcast_16(106 * 256))); }
  INLINE Vector Times_473(Vector x) { return Add(Add(x, x), Multiply_High_16(x, Broadcast_16(-39 * 256))); }
  INLINE Vector Times_277(Vector x) { return Add(x, Multiply_High_16(x, Broadcast_16(21 * 256))); }
  INLINE Vector Times_Minus_669(Vector x) { return Subtract(Multiply_High_16(x, Broadcast_16(99 * 256)), Add(Add(x, x), x)); }
};

/** The same in 32 bits. */
struct DoubleWordPass {
  INLINE Vector Add(Vector a, Vector b) { return Add_32(a, b); }
  INLINE Vector Subtract(Vector a, Vector b) { return Subtract_32(a, b); }
  INLINE Vector Times(Vector x, int32_t c) { return Shift_Right_32(Multiply_Low_32(x, Broadcast_32(c)), 8); }
  INLINE Vector Times_362(Vector x) { return Times(x, 362); }
  INLINE Vector Times_473(Vector x) { return Times(x, 473); }
  INLINE Vector Times_277(Vector x) { return Times(x, 277); }
  INLINE Vector Times_Minus_669(Vector x) { return Times(x, -669); }
};

}  // namespace

/** The end of the odd part and the sums with the even one. */
template <typename Pass>
INLINE void Combine(Vector* v, Vector e0, Vector e1, Vector e2, Vector e3, Vector o7, Vector q10, Vector q11, Vector q12) {
  const Vector o6 = Pass::Subtract(q12, o7), o5 = Pass::Subtract(q11, o6), o4 = Pass::Add(q10, o5);
  v[0] = Pass::Add(e0, o7), v[7] = Pass::Subtract(e0, o7);
  v[1] = Pass::Add(e1, o6), v[6] = Pass::Subtract(e1, o6);
  v[2] = Pass::Add(e2, o5), v[5] = Pass::Subtract(e2, o5);
  v[3] = Pass::Subtract(e3, o4), v[4] = Pass::Add(e3, o4);
}

/** One 8-point pass in place, as in idct_plain.cpp. */
template <typename Pass>
INLINE void Butterfly(Vector* v) {
  const Vector u0 = Pass::Add(v[0], v[4]), u1 = Pass::Subtract(v[0], v[4]), u3 = Pass::Add(v[2], v[6]);
  const Vector u2 = Pass::Subtract(Pass::Times_362(Pass::Subtract(v[2], v[6])), u3);
  const Vector z13 = Pass::Add(v[5], v[3]), z10 = Pass::Subtract(v[5], v[3]);
  const Vector z11 = Pass::Add(v[1], v[7]), z12 = Pass::Subtract(v[1], v[7]);
  const Vector z5 = Pass::Times_473(Pass::Add(z10, z12));
  const Vector q10 = Pass::Subtract(Pass::Times_277(z12), z5), q11 = Pass::Times_362(Pass::Subtract(z11, z13));
  const Vector q12 = Pass::Add(Pass::Times_Minus_669(z10), z5);
  Combine<Pass>(v, Pass::Add(u0, u3), Pass::Add(u1, u2), Pass::Subtract(u1, u2), Pass::Subtract(u0, u3), Pass::Add(z11, z13), q10,
                q11, q12);
}

/** The same in 16 bits, with v[4] to v[7] zero on entry. */
INLINE void Butterfly_Narrow(Vector* v) {
  using Pass = WordPass;
  const Vector u2 = Pass::Subtract(Pass::Times_362(v[2]), v[2]), difference = Pass::Subtract(v[1], v[3]);
  const Vector z5 = Pass::Times_473(difference);
  const Vector q10 = Pass::Subtract(Pass::Times_277(v[1]), z5), q11 = Pass::Times_362(difference);
  const Vector q12 = Pass::Add(Pass::Times_Minus_669(Pass::Subtract(Broadcast_16(0), v[3])), z5);
  Combine<Pass>(v, Pass::Add(v[0], v[2]), Pass::Add(v[0], u2), Pass::Subtract(v[0], u2), Pass::Subtract(v[0], v[2]),
                Pass::Add(v[1], v[3]), q10, q11, q12);
}

/** Rows whose words 4 to 7 are zero to columns 0 to 3, of each block by itself. */
INLINE void Transpose_Narrow(Vector* v) {
  Transpose_32(Interleave_Low_16(v[0], v[1]), Interleave_Low_16(v[2], v[3]), Interleave_Low_16(v[4], v[5]),
               Interleave_Low_16(v[6], v[7]), v);
}

/** Two columns of results to bytes from -128 to 127. */
INLINE Vector Pack_Columns(Vector a, Vector b) { return Pack_Saturate_16(Shift_Right_16(a, 6), Shift_Right_16(b, 6)); }

/** Columns of results to rows of samples: out[i] holds rows 2i and 2i + 1, 8 bytes each. Saturation to -128 to 127 and a change
 * of the sign bit are the level shift and the clamp that wraps at 10 bits. */
INLINE void Samples(const Vector* v, Vector* out) {
  const Vector q04 = Pack_Columns(v[0], v[4]), q15 = Pack_Columns(v[1], v[5]);
  const Vector q26 = Pack_Columns(v[2], v[6]), q37 = Pack_Columns(v[3], v[7]);
  const Vector even0 = Interleave_Low_8(q04, q26), even4 = Interleave_High_8(q04, q26);
  const Vector odd0 = Interleave_Low_8(q15, q37), odd4 = Interleave_High_8(q15, q37);
  const Vector left0 = Interleave_Low_8(even0, odd0), left4 = Interleave_High_8(even0, odd0);
  const Vector right0 = Interleave_Low_8(even4, odd4), right4 = Interleave_High_8(even4, odd4);
  const Vector sign = Broadcast_8(0x80);
  out[0] = Interleave_Low_32(left0, right0) ^ sign, out[1] = Interleave_High_32(left0, right0) ^ sign;
  out[2] = Interleave_Low_32(left4, right4) ^ sign, out[3] = Interleave_High_32(left4, right4) ^ sign;
}

INLINE Vector Dequantised(const int16_t* block, const StripQuant* quant, int32_t row) {
  return Multiply_Low_16(Load(block + 16 * row), Load_Each_Lane(quant->factors + 8 * row));
}

/** Transforms blocks within StripNarrow. */
INLINE void Transform_Narrow(const int16_t* block, const StripQuant* quant, Vector* out) {
  Vector v[8];
  for (int32_t i = 0; i < 4; ++i) v[i] = Dequantised(block, quant, i);
  Butterfly_Narrow(v);
  Transpose_Narrow(v);
  Butterfly_Narrow(v);
  Samples(v, out);
}

INLINE void Transform_Full(const int16_t* block, const StripQuant* quant, Vector* out) {
  Vector v[8];
  for (int32_t i = 0; i < 8; ++i) v[i] = Dequantised(block, quant, i);
  Butterfly<WordPass>(v);
  Transpose_16(v);
  Butterfly<WordPass>(v);
  Samples(v, out);
}

/** 1 if 16 bits are enough. */
static int32_t Fits(const int16_t* block, const StripQuant* quant) {
  Vector sum = Broadcast_16(0);
  for (int32_t i = 0; i < 8; ++i) {
    sum = Add_32(sum, Multiply_Add_Pairs_16(Absolute_16(Load(block + 16 * i)), Load_Each_Lane(quant->weights + 8 * i)));
  }
  return !Exceeds(sum, StripWeightLimit);
}

/** Turns differences of DC into DC values: cut to words in the blocks, in full in dc, six a macroblock. */
static void Sum_Dc(int16_t* blocks, int32_t macroblocks, int32_t* predictors, int32_t* dc) {
  static const int32_t offsets[6] = {0, 8, 128, 136, 256, 264}, components[6] = {0, 0, 0, 0, 1, 2};
  for (int32_t m = 0; m < macroblocks; ++m, blocks += StripMacroblockSize) {
    for (int32_t i = 0; i < 6; ++i) {
      int32_t* const predictor = &predictors[components[i]];
      *predictor = (int32_t)((uint32_t)*predictor + (uint32_t)blocks[offsets[i]]);
      blocks[offsets[i]] = (int16_t)(uint16_t)(uint32_t)*predictor;
      *dc++ = *predictor;
    }
  }
}

/** The sample of a block with that DC value alone. */
static uint8_t Flat_Sample(int32_t dc, int16_t factor) {
  const int32_t x = (int16_t)(uint16_t)((uint32_t)dc * (uint32_t)(uint16_t)factor) >> 6;
  return (uint8_t)(x < -128 ? 0 : x > 127 ? 255 : x + 128);
}
