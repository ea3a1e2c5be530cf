/* What a level makes of its verbs, whatever they are; the end of vector_sse2_body.h and vector_avx2_body.h. All other bodies are
 * written in these verbs and the operators & | ^.
 *
 * A Vector is one or more lanes of 16 bytes, which packing and interleaving treat each by itself. The number at the end of a
 * verb's name is the bits of what it works on; numbers are signed unless the name says otherwise, and sums and shifts wrap.
 *
 *   Load, Store                    any address; _Aligned: a multiple of the vector's size
 *   Load_Each_Lane                 the same 16 bytes to every lane
 *   Load_Halves                    half a vector's bytes, in order, to the lower half of each lane
 *   Store_Lanes                    the lower lanes of both vectors, then the upper ones
 *   Broadcast                      one number everywhere
 *   Add_Saturate, Subtract_Saturate   unsigned
 *   Multiply_Low, Multiply_High    the lower or upper half of each product
 *   Multiply_Add_Pairs_16          sums of two neighbouring products, of 32 bits
 *   Copy_Sign_16                   a size with the sign of another number; where that is 0, the size has to be 0
 *   Equal, Greater                 all bits of a number set where it holds
 *   Clear_Where                    0 where the mask is set
 *   Top_Bits_8                     the top bit of each byte
 *   Pack_Saturate                  numbers of both vectors in half as many bits; _Unsigned: to unsigned ones
 *   Interleave_Low, _High          numbers of the lower or upper halves, in turn */

/** Lanes of a vector. */
enum { Lanes = sizeof(Vector) / 16 };

/** Two words in turn. */
INLINE Vector Broadcast_Pair_16(int32_t even, int32_t odd) {
  return Broadcast_32((int32_t)((uint32_t)odd << 16 | (uint32_t)(even & 0xFFFF)));
}

/** Four rows of four to columns: in each lane from[i] becomes number i of all. */
INLINE void Transpose_32(Vector from0, Vector from1, Vector from2, Vector from3, Vector* to) {
  const Vector low01 = Interleave_Low_32(from0, from1), high01 = Interleave_High_32(from0, from1);
  const Vector low23 = Interleave_Low_32(from2, from3), high23 = Interleave_High_32(from2, from3);
  to[0] = Interleave_Low_64(low01, low23), to[1] = Interleave_High_64(low01, low23);
  to[2] = Interleave_Low_64(high01, high23), to[3] = Interleave_High_64(high01, high23);
}

/** Eight rows of eight to columns, in each lane. */
INLINE void Transpose_16(Vector* v) {
  const Vector low01 = Interleave_Low_16(v[0], v[1]), high01 = Interleave_High_16(v[0], v[1]);
  const Vector low23 = Interleave_Low_16(v[2], v[3]), high23 = Interleave_High_16(v[2], v[3]);
  const Vector low45 = Interleave_Low_16(v[4], v[5]), high45 = Interleave_High_16(v[4], v[5]);
  const Vector low67 = Interleave_Low_16(v[6], v[7]), high67 = Interleave_High_16(v[6], v[7]);
  Transpose_32(low01, low23, low45, low67, v);
  Transpose_32(high01, high23, high45, high67, v + 4);
}

/** Copies a vector's bytes and gives a bit for each that is FF. */
INLINE uint32_t Copy_And_Find(const uint8_t* from, uint8_t* to) {
  const Vector bytes = Load(from);
  Store(to, bytes);
  return Top_Bits_8(Equal_8(bytes, Broadcast_8(-1)));
}
