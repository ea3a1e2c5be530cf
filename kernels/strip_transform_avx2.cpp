/* Two blocks side by side: luma neighbours, or Cb with Cr. */
#include "kernels/kernels.h"

#include <immintrin.h>

typedef __m256i Lanes;

static Lanes Words(int16_t x) { return _mm256_set1_epi16(x); }
static Lanes Load(const int16_t* p) { return _mm256_loadu_si256((const __m256i*)p); }
static Lanes Load_Table(const int16_t* p) { return _mm256_broadcastsi128_si256(_mm_loadu_si128((const __m128i*)p)); }
static Lanes Add(Lanes a, Lanes b) { return _mm256_add_epi16(a, b); }
static Lanes Sub(Lanes a, Lanes b) { return _mm256_sub_epi16(a, b); }
static Lanes Xor(Lanes a, Lanes b) { return _mm256_xor_si256(a, b); }
static Lanes Add_Doubles(Lanes a, Lanes b) { return _mm256_add_epi32(a, b); }
static Lanes Product(Lanes a, Lanes b) { return _mm256_mullo_epi16(a, b); }
static Lanes High_Product(Lanes a, Lanes b) { return _mm256_mulhi_epi16(a, b); }
static Lanes Pair_Products(Lanes a, Lanes b) { return _mm256_madd_epi16(a, b); }
static Lanes Size(Lanes a) { return _mm256_abs_epi16(a); }
static Lanes Shift6(Lanes a) { return _mm256_srai_epi16(a, 6); }
static Lanes Pack(Lanes a, Lanes b) { return _mm256_packs_epi16(a, b); }
static Lanes Low_Bytes(Lanes a, Lanes b) { return _mm256_unpacklo_epi8(a, b); }
static Lanes High_Bytes(Lanes a, Lanes b) { return _mm256_unpackhi_epi8(a, b); }
static Lanes Low_Words(Lanes a, Lanes b) { return _mm256_unpacklo_epi16(a, b); }
static Lanes High_Words(Lanes a, Lanes b) { return _mm256_unpackhi_epi16(a, b); }
static Lanes Low_Doubles(Lanes a, Lanes b) { return _mm256_unpacklo_epi32(a, b); }
static Lanes High_Doubles(Lanes a, Lanes b) { return _mm256_unpackhi_epi32(a, b); }
static Lanes Low_Quads(Lanes a, Lanes b) { return _mm256_unpacklo_epi64(a, b); }
static Lanes High_Quads(Lanes a, Lanes b) { return _mm256_unpackhi_epi64(a, b); }

/** Does the sum of a block's four doubles pass the limit? Each half is a block. */
static int32_t Exceeds(Lanes sum, int32_t limit) {
  sum = _mm256_add_epi32(sum, _mm256_shuffle_epi32(sum, 0x4E));
  sum = _mm256_add_epi32(sum, _mm256_shuffle_epi32(sum, 0xB1));
  return _mm256_movemask_epi8(_mm256_cmpgt_epi32(sum, _mm256_set1_epi32(limit)));
}

#include "kernels/strip_transform_body.h"

/* What 16 bits can't hold: the rule in 32, one block, a row a vector. */

static __m256i Wide_Times(__m256i x, int32_t c) { return _mm256_srai_epi32(_mm256_mullo_epi32(x, _mm256_set1_epi32(c)), 8); }

INLINE void Wide_Butterfly(__m256i* v) {
  const __m256i u0 = _mm256_add_epi32(v[0], v[4]), u1 = _mm256_sub_epi32(v[0], v[4]), u3 = _mm256_add_epi32(v[2], v[6]);
  const __m256i u2 = _mm256_sub_epi32(Wide_Times(_mm256_sub_epi32(v[2], v[6]), 362), u3);
  const __m256i e0 = _mm256_add_epi32(u0, u3), e3 = _mm256_sub_epi32(u0, u3);
  const __m256i e1 = _mm256_add_epi32(u1, u2), e2 = _mm256_sub_epi32(u1, u2);
  const __m256i z13 = _mm256_add_epi32(v[5], v[3]), z10 = _mm256_sub_epi32(v[5], v[3]);
  const __m256i z11 = _mm256_add_epi32(v[1], v[7]), z12 = _mm256_sub_epi32(v[1], v[7]);
  const __m256i o7 = _mm256_add_epi32(z11, z13), q11 = Wide_Times(_mm256_sub_epi32(z11, z13), 362);
  const __m256i z5 = Wide_Times(_mm256_add_epi32(z10, z12), 473);
  const __m256i q10 = _mm256_sub_epi32(Wide_Times(z12, 277), z5), q12 = _mm256_add_epi32(Wide_Times(z10, -669), z5);
  const __m256i o6 = _mm256_sub_epi32(q12, o7), o5 = _mm256_sub_epi32(q11, o6), o4 = _mm256_add_epi32(q10, o5);
  v[0] = _mm256_add_epi32(e0, o7), v[7] = _mm256_sub_epi32(e0, o7);
  v[1] = _mm256_add_epi32(e1, o6), v[6] = _mm256_sub_epi32(e1, o6);
  v[2] = _mm256_add_epi32(e2, o5), v[5] = _mm256_sub_epi32(e2, o5);
  v[3] = _mm256_sub_epi32(e3, o4), v[4] = _mm256_add_epi32(e3, o4);
}

INLINE void Wide_Transpose(__m256i* v) {
  __m256i a[8], b[8];
  for (int32_t i = 0; i < 8; i += 2) {
    a[i] = _mm256_unpacklo_epi32(v[i], v[i + 1]);
    a[i + 1] = _mm256_unpackhi_epi32(v[i], v[i + 1]);
  }
  for (int32_t i = 0; i < 8; i += 4) {
    b[i] = _mm256_unpacklo_epi64(a[i], a[i + 2]), b[i + 1] = _mm256_unpackhi_epi64(a[i], a[i + 2]);
    b[i + 2] = _mm256_unpacklo_epi64(a[i + 1], a[i + 3]), b[i + 3] = _mm256_unpackhi_epi64(a[i + 1], a[i + 3]);
  }
  for (int32_t i = 0; i < 4; ++i) {
    v[i] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x20);
    v[i + 4] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x31);
  }
}

__attribute__((noinline)) static void Wide_Block(const int16_t* block, int32_t dc, const StripQuant* quant, uint8_t* const* rows,
                                                 int32_t left) {
  __m256i v[8];
  for (int32_t i = 0; i < 8; ++i) {
    __m256i row = _mm256_cvtepi16_epi32(_mm_loadu_si128((const __m128i*)(block + 16 * i)));
    if (i == 0) row = _mm256_insert_epi32(row, dc, 0);
    v[i] = _mm256_mullo_epi32(row, _mm256_cvtepi16_epi32(_mm_loadu_si128((const __m128i*)(quant->factors + 8 * i))));
  }
  Wide_Butterfly(v);
  Wide_Transpose(v);
  Wide_Butterfly(v);
  Wide_Transpose(v);
  for (int32_t i = 0; i < 8; ++i) {
    const __m256i x = _mm256_srai_epi32(_mm256_slli_epi32(v[i], 16), 22);
    const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(x), _mm256_extracti128_si256(x, 1));
    const __m128i bytes = _mm_xor_si128(_mm_packs_epi16(words, words), _mm_set1_epi8((char)0x80));
    _mm_storel_epi64((__m128i*)(rows[i] + left), bytes);
  }
}

static void Clear(int16_t* pair, int32_t rows) {
  for (int32_t i = 0; i < rows; ++i) _mm256_storeu_si256((__m256i*)(pair + 16 * i), _mm256_setzero_si256());
}

/* Pairs of a strip are numbered from 0, three a macroblock, the third being chroma, and are worked off by class, those of a class
 * one after the other, for no processor could foretell the class of the next. */

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

/** The pairs of a strip by class: beyond DC, beyond StripNarrow, and those of which the sum of sizes doesn't say that 16 bits are
 *  enough. */
struct Classes {
  Pairs notFlat, notNarrow, unsure;
};

/** Bits of 32 blocks to bits of 16 pairs: set where either block's is. */
static uint32_t Either(uint32_t blocks) { return _pext_u32(blocks | blocks >> 1, 0x55555555); }

static uint32_t Bits(__m256i doubles) { return (uint32_t)_mm256_movemask_ps(_mm256_castsi256_ps(doubles)); }

/** What each of eight blocks in turn is held to, the first of which is the `first` of its macroblock. */
static __m256i Limits(int32_t luma, int32_t chroma, int32_t first) {
  int32_t limits[8];
  for (int32_t i = 0; i < 8; ++i) limits[i] = (first + i) % 6 < 4 ? luma : chroma;
  return _mm256_loadu_si256((const __m256i*)limits);
}

static Classes Classify(const StripReach* reach, const StripQuant* luma, const StripQuant* chroma) {
  // Eight blocks a vector: which component one is repeats itself after three.
  __m256i narrow[3], middle[3];
  for (int32_t i = 0; i < 3; ++i) {
    narrow[i] = Limits(luma->narrowLimit, chroma->narrowLimit, 8 * i);
    middle[i] = Limits(luma->middleLimit, chroma->middleLimit, 8 * i);
  }
  Classes classes = {0, 0, 0};
  for (int32_t i = 0; i < 6 * StripMacroblocks; i += 32) {
    uint32_t notFlat = 0, notNarrow = 0, unsure = 0;
    for (int32_t j = 0; j < 32; j += 8) {
      const int32_t phase = (i + j) / 8 % 3;
      const __m256i progress = _mm256_loadu_si256((const __m256i*)(reach->blocks + i + j));
      const __m256i positions = _mm256_and_si256(progress, _mm256_set1_epi32(0xFF));
      const __m256i sizes = _mm256_srli_epi32(progress, StripSizeShift);
      const __m256i wide = _mm256_cmpgt_epi32(positions, _mm256_set1_epi32(StripNarrow));
      const __m256i limit = _mm256_blendv_epi8(narrow[phase], middle[phase], wide);
      const __m256i beyond = _mm256_cmpgt_epi32(positions, _mm256_set1_epi32(StripMiddle));
      notFlat |= Bits(_mm256_cmpgt_epi32(positions, _mm256_set1_epi32(1))) << j;
      notNarrow |= Bits(wide) << j;
      unsure |= Bits(_mm256_or_si256(beyond, _mm256_cmpgt_epi32(sizes, limit))) << j;
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

/* Where the samples of a luma pair go: rows from the first or the ninth on, 16 columns a macroblock. */

INLINE void Put_Luma(const Kind* kind, int32_t pair, const Lanes* out) {
  uint8_t* const* const rows = kind->rows + pair % 3 * 8;
  const int32_t left = pair / 3 * 16;
  for (int32_t i = 0; i < 4; ++i) {
    const __m256i both = _mm256_permute4x64_epi64(out[i], 0xD8);
    _mm_storeu_si128((__m128i*)(rows[2 * i] + left), _mm256_castsi256_si128(both));
    _mm_storeu_si128((__m128i*)(rows[2 * i + 1] + left), _mm256_extracti128_si256(both, 1));
  }
}

INLINE void Put_Chroma(const Kind* kind, int32_t pair, const Lanes* out) {
  uint8_t *const *const cbRows = kind->rows + 16, *const *const crRows = kind->rows + 24;
  const int32_t left = pair / 3 * 8;
  for (int32_t i = 0; i < 4; ++i) {
    const __m128i cb = _mm256_castsi256_si128(out[i]), cr = _mm256_extracti128_si256(out[i], 1);
    _mm_storel_epi64((__m128i*)(cbRows[2 * i] + left), cb);
    _mm_storeh_pi((__m64*)(cbRows[2 * i + 1] + left), _mm_castsi128_ps(cb));
    _mm_storel_epi64((__m128i*)(crRows[2 * i] + left), cr);
    _mm_storeh_pi((__m64*)(crRows[2 * i + 1] + left), _mm_castsi128_ps(cr));
  }
}

typedef void (*PutPair)(const Kind* kind, int32_t pair, const Lanes* out);

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
    const __m128i a = _mm_set1_epi8((char)Flat_Sample(dc[0], factor)), b = _mm_set1_epi8((char)Flat_Sample(dc[1], factor));
    const Lanes flat = _mm256_set_m128i(b, a), out[4] = {flat, flat, flat, flat};
    put(kind, pair, out);
    Clear(Blocks_Of(kind, pair), 1);
  }
}

INLINE void Narrow_Pair(const Kind* kind, int32_t pair, PutPair put) {
  Lanes out[4];
  Transform_Narrow(Blocks_Of(kind, pair), kind->quant, out);
  put(kind, pair, out);
  Clear(Blocks_Of(kind, pair), 4);
}

/** Twice four words: of two rows, or a table's once more. */
static Lanes Join(const int16_t* a, const int16_t* b) { return _mm256_unpacklo_epi64(Load(a), Load(b)); }
static Lanes Load_Table_Half(const int16_t* p) { return _mm256_broadcastq_epi64(_mm_loadl_epi64((const __m128i*)p)); }

/** Two narrow pairs at once, the first pass in one go. */
INLINE void Narrow_Pairs_At(const Kind* kind, int32_t first, int32_t second, PutPair put) {
  int16_t *const a = Blocks_Of(kind, first), *const b = Blocks_Of(kind, second);
  Lanes v[8], out[4];
  for (int32_t i = 0; i < 4; ++i) {
    v[i] = Product(Join(a + 16 * i, b + 16 * i), Load_Table_Half(kind->quant->factors + 8 * i));
  }
  Clear(a, 4);
  Clear(b, 4);
  Butterfly_Narrow(v);
  Transpose(v);
  Lanes w[8] = {v[4], v[5], v[6], v[7]};
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
    Lanes out[4];
    Transform_Full(Blocks_Of(kind, pair), kind->quant, out);
    put(kind, pair, out);
    Clear(Blocks_Of(kind, pair), 8);
  }
}

/** The pairs of which the sums of sizes alone don't say that 16 bits are enough: gives those of which a closer look says it, the
 * rest is done. */
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
