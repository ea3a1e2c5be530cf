/* Two blocks side by side: luma neighbours, or Cb with Cr. */
#include "kernels/kernels.h"
#include "kernels/vector_avx2_body.h"

/** Does the sum of a block's four double words pass the limit? Each lane is a block. */
static int32_t Exceeds(Vector sum, int32_t limit) {
  sum = Add_32(sum, _mm256_shuffle_epi32(sum, 0x4E));
  sum = Add_32(sum, _mm256_shuffle_epi32(sum, 0xB1));
  return (int32_t)Top_Bits_8(Greater_32(sum, Broadcast_32(limit)));
}

#include "kernels/strip_transform_body.h"

/* Blocks that 16 bits are too few for: the transform in 32, one block, a row a vector. */

INLINE void Wide_Transpose(Vector* v) {
  Vector b[8];
  Transpose_32(v[0], v[1], v[2], v[3], b);
  Transpose_32(v[4], v[5], v[6], v[7], b + 4);
  for (int32_t i = 0; i < 4; ++i) {
    v[i] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x20);
    v[i + 4] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x31);
  }
}

static Vector Widen(const int16_t* words) { return _mm256_cvtepi16_epi32(Load_Lane(words)); }

__attribute__((noinline)) static void Wide_Block(const int16_t* block, int32_t dc, const StripQuant* quant, uint8_t* const* rows,
                                                 int32_t left) {
  Vector v[8];
  for (int32_t i = 0; i < 8; ++i) {
    Vector row = Widen(block + 16 * i);
    if (i == 0) row = _mm256_insert_epi32(row, dc, 0);
    v[i] = Multiply_Low_32(row, Widen(quant->factors + 8 * i));
  }
  Butterfly<DoubleWordPass>(v);
  Wide_Transpose(v);
  Butterfly<DoubleWordPass>(v);
  Wide_Transpose(v);
  for (int32_t i = 0; i < 8; ++i) {
    const Vector x = Shift_Right_32(Shift_Left_32(v[i], 16), 22);
    const Lane words = _mm_packs_epi32(Low_Lane(x), High_Lane(x));
    Store_Low_Half(rows[i] + left, _mm_packs_epi16(words, words) ^ _mm_set1_epi8((char)0x80));
  }
}

static void Clear(int16_t* pair, int32_t rows) {
#pragma GCC unroll 8
  for (int32_t i = 0; i < rows; ++i) Store(pair + 16 * i, Broadcast_16(0));
}

/* Pairs of a strip are numbered from 0, three a macroblock, of which the third is chroma. They are transformed class by class,
 * since a branch by the class of each pair could not be predicted. */

/** A set of pairs, a bit for each. */
typedef uint64_t Pairs;

/** Every third pair is chroma. */
static const Pairs ChromaPairs = 0x4924924924924924;

/** What the pairs of one kind have in common. */
struct Kind {
  int16_t* blocks;
  const int32_t* dc;
  const StripQuant* quant;
  uint8_t* const* rows;
};

/** The pairs of a strip by class: beyond DC, beyond StripNarrow, and those for which the sum of absolute values can't say that 16
 *  bits are enough. */
struct Classes {
  Pairs notFlat, notNarrow, unsure;
};

/** Bits of 32 blocks to bits of 16 pairs: set where either block's is. */
static uint32_t Either(uint32_t blocks) { return _pext_u32(blocks | blocks >> 1, 0x55555555); }

static uint32_t Top_Bits_32(Vector a) { return (uint32_t)_mm256_movemask_ps(_mm256_castsi256_ps(a)); }

/** The limits of eight blocks in turn, beginning with block `first` of a macroblock. */
static Vector Limits(int32_t luma, int32_t chroma, int32_t first) {
  int32_t limits[8];
  for (int32_t i = 0; i < 8; ++i) limits[i] = (first + i) % 6 < 4 ? luma : chroma;
  return Load(limits);
}

static Classes Classify(const StripReach* reach, const StripQuant* luma, const StripQuant* chroma) {
  // Eight blocks a vector: the order of components repeats after three vectors.
  Vector narrow[3], middle[3];
  for (int32_t i = 0; i < 3; ++i) {
    narrow[i] = Limits(luma->narrowLimit, chroma->narrowLimit, 8 * i);
    middle[i] = Limits(luma->middleLimit, chroma->middleLimit, 8 * i);
  }
  Classes classes = {0, 0, 0};
  for (int32_t i = 0; i < 6 * StripMacroblocks; i += 32) {
    uint32_t notFlat = 0, notNarrow = 0, unsure = 0;
    for (int32_t j = 0; j < 32; j += 8) {
      const int32_t phase = (i + j) / 8 % 3;
      const Vector progress = Load(reach->blocks + i + j);
      const Vector positions = progress & Broadcast_32(0xFF), sizes = Shift_Right_Unsigned_32(progress, StripSizeShift);
      const Vector wide = Greater_32(positions, Broadcast_32(StripNarrow));
      const Vector limit = _mm256_blendv_epi8(narrow[phase], middle[phase], wide);
      const Vector beyond = Greater_32(positions, Broadcast_32(StripMiddle));
      notFlat |= Top_Bits_32(Greater_32(positions, Broadcast_32(1))) << j;
      notNarrow |= Top_Bits_32(wide) << j;
      unsure |= Top_Bits_32(beyond | Greater_32(sizes, limit)) << j;
    }
    classes.notFlat |= (Pairs)Either(notFlat) << (i / 2);
    classes.notNarrow |= (Pairs)Either(notNarrow) << (i / 2);
    classes.unsure |= (Pairs)Either(unsure) << (i / 2);
  }
  return classes;
}

static int32_t Next(Pairs* pairs) {
  const int32_t pair = (int32_t)__builtin_ctzll(*pairs);
  *pairs &= *pairs - 1;
  return pair;
}

static int16_t* Blocks_Of(const Kind* kind, int32_t pair) { return kind->blocks + pair * StripPairSize; }

/* The samples of a luma pair go to the first or the last eight rows, 16 columns a macroblock. */

INLINE void Put_Luma(const Kind* kind, int32_t pair, const Vector* out) {
  uint8_t* const* const rows = kind->rows + pair % 3 * 8;
  const int32_t left = pair / 3 * 16;
  for (int32_t i = 0; i < 4; ++i) {
    const Vector both = Swap_Middle_64(out[i]);
    Store_Lane(rows[2 * i] + left, Low_Lane(both));
    Store_Lane(rows[2 * i + 1] + left, High_Lane(both));
  }
}

INLINE void Put_Chroma(const Kind* kind, int32_t pair, const Vector* out) {
  uint8_t *const *const cbRows = kind->rows + 16, *const *const crRows = kind->rows + 24;
  const int32_t left = pair / 3 * 8;
  for (int32_t i = 0; i < 4; ++i) {
    const Lane cb = Low_Lane(out[i]), cr = High_Lane(out[i]);
    Store_Low_Half(cbRows[2 * i] + left, cb);
    Store_High_Half(cbRows[2 * i + 1] + left, cb);
    Store_Low_Half(crRows[2 * i] + left, cr);
    Store_High_Half(crRows[2 * i + 1] + left, cr);
  }
}

typedef void (*PutPair)(const Kind* kind, int32_t pair, const Vector* out);

static void Wide_Pair(const Kind* kind, int32_t pair) {
  int16_t* const blocks = Blocks_Of(kind, pair);
  const int32_t* const dc = kind->dc + 2 * pair;
  const int32_t isChroma = pair % 3 == 2, left = pair / 3 * (isChroma ? 8 : 16);
  uint8_t* const* const rows = kind->rows + pair % 3 * 8;
  Wide_Block(blocks, dc[0], kind->quant, rows, left);
  if (isChroma) {
    Wide_Block(blocks + 8, dc[1], kind->quant, rows + 8, left);
  } else {
    Wide_Block(blocks + 8, dc[1], kind->quant, rows, left + 8);
  }
  Clear(blocks, 8);
}

/** Pairs of DC alone. */
INLINE void Flat_Pairs(const Kind* kind, Pairs pairs, PutPair put) {
  while (pairs != 0) {
    const int32_t pair = Next(&pairs);
    const int32_t* const dc = kind->dc + 2 * pair;
    const int16_t factor = kind->quant->factors[0];
    const Lane a = _mm_set1_epi8((char)Flat_Sample(dc[0], factor)), b = _mm_set1_epi8((char)Flat_Sample(dc[1], factor));
    const Vector flat = Join_Lanes(a, b), out[4] = {flat, flat, flat, flat};
    put(kind, pair, out);
    Clear(Blocks_Of(kind, pair), 1);
  }
}

INLINE void Narrow_Pair(const Kind* kind, int32_t pair, PutPair put) {
  Vector out[4];
  Transform_Narrow(Blocks_Of(kind, pair), kind->quant, out);
  put(kind, pair, out);
  Clear(Blocks_Of(kind, pair), 4);
}

/** Four words of each of two rows, and four words of a table twice. */
static Vector Load_Left_Halves(const int16_t* a, const int16_t* b) { return Interleave_Low_64(Load(a), Load(b)); }
static Vector Load_Four_Each_Half(const int16_t* p) { return _mm256_broadcastq_epi64(Load_Half_Lane(p)); }

/** Two narrow pairs at once: they share the first pass. */
INLINE void Narrow_Pairs_At(const Kind* kind, int32_t first, int32_t second, PutPair put) {
  int16_t *const a = Blocks_Of(kind, first), *const b = Blocks_Of(kind, second);
  Vector v[8], out[4];
  for (int32_t i = 0; i < 4; ++i) {
    v[i] = Multiply_Low_16(Load_Left_Halves(a + 16 * i, b + 16 * i), Load_Four_Each_Half(kind->quant->factors + 8 * i));
  }
  Clear(a, 4);
  Clear(b, 4);
  Butterfly_Narrow(v);
  Transpose_16(v);
  Vector w[8] = {v[4], v[5], v[6], v[7]};
  Butterfly_Narrow(v);
  Samples(v, out);
  put(kind, first, out);
  Butterfly_Narrow(w);
  Samples(w, out);
  put(kind, second, out);
}

INLINE void Narrow_Pairs(const Kind* kind, Pairs pairs, PutPair put) {
  while (pairs != 0) {
    const int32_t first = Next(&pairs);
    if (pairs == 0) {
      Narrow_Pair(kind, first, put);
      return;
    }
    Narrow_Pairs_At(kind, first, Next(&pairs), put);
  }
}

INLINE void Full_Pairs(const Kind* kind, Pairs pairs, PutPair put) {
  while (pairs != 0) {
    const int32_t pair = Next(&pairs);
    Vector out[4];
    Transform_Full(Blocks_Of(kind, pair), kind->quant, out);
    put(kind, pair, out);
    Clear(Blocks_Of(kind, pair), 8);
  }
}

/** Looks closer at pairs that may need 32 bits: transforms those that do and gives the others. */
__attribute__((noinline)) static Pairs Wide_Pairs(const Kind* kind, Pairs pairs) {
  Pairs fitting = 0;
  while (pairs != 0) {
    const int32_t pair = Next(&pairs);
    if (Fits(Blocks_Of(kind, pair), kind->quant)) {
      fitting |= (Pairs)1 << pair;
    } else {
      Wide_Pair(kind, pair);
    }
  }
  return fitting;
}

INLINE void Transform_Kind(const Kind* kind, const Classes* classes, Pairs all, PutPair put) {
  const Pairs unsure = classes->unsure & all, sure = all & ~unsure;
  Flat_Pairs(kind, sure & ~classes->notFlat, put);
  Narrow_Pairs(kind, sure & classes->notFlat & ~classes->notNarrow, put);
  Full_Pairs(kind, (sure & classes->notNarrow) | (unsure ? Wide_Pairs(kind, unsure) : 0), put);
}

static void Transform_Strip(int16_t* blocks, const StripReach* reach, int32_t macroblocks, const StripQuant* luma,
                            const StripQuant* chroma, int32_t* predictors, uint8_t* const* rows) {
  int32_t dc[6 * StripMacroblocks];
  Sum_Dc(blocks, macroblocks, predictors, dc);
  const Pairs all = ((Pairs)1 << (3 * macroblocks)) - 1;
  const Classes classes = Classify(reach, luma, chroma);
  const Kind lumaKind = {blocks, dc, luma, rows}, chromaKind = {blocks, dc, chroma, rows};
  Transform_Kind(&lumaKind, &classes, all & ~ChromaPairs, Put_Luma);
  Transform_Kind(&chromaKind, &classes, all & ChromaPairs, Put_Chroma);
}

void Use_Strip_Transform_Avx2(Kernels* record) { record->transformStrip = Transform_Strip; }
