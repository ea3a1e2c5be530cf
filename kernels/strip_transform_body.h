/* The inverse transform in 16 bits: exact modulo 2^16 as long as whatever is multiplied fits (StripWeightLimit), which is all
 * that the final clamp looks at. The file that includes this defines Lanes, a vector of one block's row or of two blocks' rows
 * side by side, and the operations on it. */

/* Vectors must stay in registers from step to step. */
#define INLINE static inline __attribute__((always_inline))

/* x * c / 256, rounded towards minus infinity: c is split into a small multiple of 256 and a rest that the high half of a product
 * takes care of. */
static Lanes Times362(Lanes x) { return Add(x, High_Product(x, Words(106 * 256))); }
static Lanes Times473(Lanes x) { return Add(Add(x, x), High_Product(x, Words(-39 * 256))); }
static Lanes Times277(Lanes x) { return Add(x, High_Product(x, Words(21 * 256))); }
static Lanes Times_Minus669(Lanes x) { return Sub(High_Product(x, Words(99 * 256)), Add(Add(x, x), x)); }

/** The odd part's end, the same in both butterflies. */
INLINE void Combine(Lanes* v, Lanes e0, Lanes e1, Lanes e2, Lanes e3, Lanes o7, Lanes q10, Lanes q11, Lanes q12) {
  const Lanes o6 = Sub(q12, o7), o5 = Sub(q11, o6), o4 = Add(q10, o5);
  v[0] = Add(e0, o7), v[7] = Sub(e0, o7);
  v[1] = Add(e1, o6), v[6] = Sub(e1, o6);
  v[2] = Add(e2, o5), v[5] = Sub(e2, o5);
  v[3] = Sub(e3, o4), v[4] = Add(e3, o4);
}

/** One 8-point pass in place, as in idct_plain.cpp. */
INLINE void Butterfly(Lanes* v) {
  const Lanes u0 = Add(v[0], v[4]), u1 = Sub(v[0], v[4]), u3 = Add(v[2], v[6]);
  const Lanes u2 = Sub(Times362(Sub(v[2], v[6])), u3);
  const Lanes z13 = Add(v[5], v[3]), z10 = Sub(v[5], v[3]), z11 = Add(v[1], v[7]), z12 = Sub(v[1], v[7]);
  const Lanes z5 = Times473(Add(z10, z12));
  const Lanes q10 = Sub(Times277(z12), z5), q11 = Times362(Sub(z11, z13)), q12 = Add(Times_Minus669(z10), z5);
  Combine(v, Add(u0, u3), Add(u1, u2), Sub(u1, u2), Sub(u0, u3), Add(z11, z13), q10, q11, q12);
}

/** The same with v[4] to v[7] zero on entry. */
INLINE void Butterfly_Narrow(Lanes* v) {
  const Lanes u2 = Sub(Times362(v[2]), v[2]), difference = Sub(v[1], v[3]);
  const Lanes z5 = Times473(difference);
  const Lanes q10 = Sub(Times277(v[1]), z5), q11 = Times362(difference), q12 = Add(Times_Minus669(Sub(Words(0), v[3])), z5);
  Combine(v, Add(v[0], v[2]), Add(v[0], u2), Sub(v[0], u2), Sub(v[0], v[2]), Add(v[1], v[3]), q10, q11, q12);
}

/** Rows to columns, of each block by itself. */
INLINE void Transpose(Lanes* v) {
  const Lanes a0 = Low_Words(v[0], v[1]), a1 = High_Words(v[0], v[1]), a2 = Low_Words(v[2], v[3]), a3 = High_Words(v[2], v[3]);
  const Lanes a4 = Low_Words(v[4], v[5]), a5 = High_Words(v[4], v[5]), a6 = Low_Words(v[6], v[7]), a7 = High_Words(v[6], v[7]);
  const Lanes b0 = Low_Doubles(a0, a2), b1 = High_Doubles(a0, a2), b2 = Low_Doubles(a1, a3), b3 = High_Doubles(a1, a3);
  const Lanes b4 = Low_Doubles(a4, a6), b5 = High_Doubles(a4, a6), b6 = Low_Doubles(a5, a7), b7 = High_Doubles(a5, a7);
  v[0] = Low_Quads(b0, b4), v[1] = High_Quads(b0, b4), v[2] = Low_Quads(b1, b5), v[3] = High_Quads(b1, b5);
  v[4] = Low_Quads(b2, b6), v[5] = High_Quads(b2, b6), v[6] = Low_Quads(b3, b7), v[7] = High_Quads(b3, b7);
}

/** The same of rows whose words 4 to 7 are zero: gives columns 0 to 3. */
INLINE void Transpose_Narrow(Lanes* v) {
  const Lanes a0 = Low_Words(v[0], v[1]), a2 = Low_Words(v[2], v[3]), a4 = Low_Words(v[4], v[5]), a6 = Low_Words(v[6], v[7]);
  const Lanes b0 = Low_Doubles(a0, a2), b1 = High_Doubles(a0, a2), b4 = Low_Doubles(a4, a6), b5 = High_Doubles(a4, a6);
  v[0] = Low_Quads(b0, b4), v[1] = High_Quads(b0, b4), v[2] = Low_Quads(b1, b5), v[3] = High_Quads(b1, b5);
}

/** Columns of results to rows of samples: out[i] holds rows 2i and 2i + 1, 8 bytes each. Saturating what is left of 16 bits to
 * -128 to 127 and turning the sign is the level shift and the clamp that wraps at 10 bits. */
INLINE void Samples(const Lanes* v, Lanes* out) {
  const Lanes q04 = Pack(Shift6(v[0]), Shift6(v[4])), q15 = Pack(Shift6(v[1]), Shift6(v[5]));
  const Lanes q26 = Pack(Shift6(v[2]), Shift6(v[6])), q37 = Pack(Shift6(v[3]), Shift6(v[7]));
  const Lanes even0 = Low_Bytes(q04, q26), even4 = High_Bytes(q04, q26), odd0 = Low_Bytes(q15, q37), odd4 = High_Bytes(q15, q37);
  const Lanes left0 = Low_Bytes(even0, odd0), left4 = High_Bytes(even0, odd0);
  const Lanes right0 = Low_Bytes(even4, odd4), right4 = High_Bytes(even4, odd4);
  const Lanes sign = Words((int16_t)0x8080);
  out[0] = Xor(Low_Doubles(left0, right0), sign), out[1] = Xor(High_Doubles(left0, right0), sign);
  out[2] = Xor(Low_Doubles(left4, right4), sign), out[3] = Xor(High_Doubles(left4, right4), sign);
}

/** Transforms blocks within StripNarrow. */
INLINE void Transform_Narrow(const int16_t* block, const StripQuant* quant, Lanes* out) {
  Lanes v[8];
  for (int32_t i = 0; i < 4; ++i) v[i] = Product(Load(block + 16 * i), Load_Table(quant->factors + 8 * i));
  Butterfly_Narrow(v);
  Transpose_Narrow(v);
  Butterfly_Narrow(v);
  Samples(v, out);
}

INLINE void Transform_Full(const int16_t* block, const StripQuant* quant, Lanes* out) {
  Lanes v[8];
  for (int32_t i = 0; i < 8; ++i) v[i] = Product(Load(block + 16 * i), Load_Table(quant->factors + 8 * i));
  Butterfly(v);
  Transpose(v);
  Butterfly(v);
  Samples(v, out);
}

/** 1 if 16 bits are enough. */
static int32_t Fits(const int16_t* block, const StripQuant* quant) {
  Lanes sum = Words(0);
  for (int32_t i = 0; i < 8; ++i) {
    sum = Add_Doubles(sum, Pair_Products(Size(Load(block + 16 * i)), Load_Table(quant->weights + 8 * i)));
  }
  return !Exceeds(sum, StripWeightLimit);
}

/** Differences of DC become DC values: as words in the blocks, whole in dc, six a macroblock. */
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
