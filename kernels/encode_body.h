/* Samples to bytes for the encoder's fast road, shared by its levels: transform and quantisation in 16 bits, Huffman coding, byte
 * stuffing. A macroblock goes stage by stage, each a short chain that the processor can run several of at once.
 *
 * A level brings ahead of this file:
 *   Lanes, the blocks in a vector, and Words, a vector of 8 words of each, with Load_Words, Store_Words, Same_Row (one row for
 * all blocks) and All (one number); Add, Sub, High_Product, Low_Product, Top_Bit, Halved, Size_Of, With_Sign, Zero_Below: their
 * arithmetic, in 16 bits; Transpose: of 8x8 words of each block, registers to memory; Split_Columns: sums and differences of
 * opposite columns, from what Load_Set left in four vectors; Byte_Index: where the level at a scan position stands among the
 * bytes of a block; CopyWidth and Copy_And_Find: copies so many bytes and gives a mask of the 0xFF among them. Behind this file
 * it brings Load_Set and Sort_Levels. */

#define INLINE static inline __attribute__((always_inline))

/** A strip is what is transformed before it is coded. A block's bits: 63 levels of 26, and the first of 22. */
enum { StripUnits = 4, UnitSets = 6 / Lanes, LumaSets = 4 / Lanes, MostBlockBytes = 208 };

/** Blocks on their way from samples to bits, as many as a vector holds. */
typedef struct {
  int16_t words[8][Lanes][8];  ///< Work of the transform; in the end the levels, row by row.
  uint64_t nonZero[Lanes];     ///< Levels other than 0, by scan position.
  int8_t bytes[Lanes][64];     ///< Levels as bytes, larger ones as -128 or 127, in an order of the level's own.
} __attribute__((aligned(32))) BlockSet;

/** Factors and limits of a quantisation, and the transform's constants; all in memory, as registers are for the samples. */
typedef struct {
  Words reciprocal[8], least[8];
  Words minus75, minus117, plus78, plus98, middle;
} __attribute__((aligned(32))) Constants;

/** Pending bits, the newest lowest, and where bytes go. What stands above the pending bits has no meaning. */
typedef struct {
  uint64_t bits, count;
  uint8_t* next;
} BitWriter;

/** Scan position to natural position. */
static const uint8_t scanOrder[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
                                      41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
                                      30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

/* ---- Transform ---- */

/** One 8-point pass, from sums and differences of opposite values. x * c >> 8 is x + (x * (c - 256) >> 8), exactly. */
INLINE void Butterfly(const Constants* c, const Words* a, const Words* d, Words* y) {
  const Words e0 = Add(a[0], a[3]), e3 = Sub(a[0], a[3]), e1 = Add(a[1], a[2]), e2 = Sub(a[1], a[2]);
  const Words e23 = Add(e2, e3), z1 = Add(e23, High_Product(e23, c->minus75));
  y[0] = Add(e0, e1), y[4] = Sub(e0, e1), y[2] = Add(e3, z1), y[6] = Sub(e3, z1);

  const Words f0 = Add(d[3], d[2]), f1 = Add(d[2], d[1]), f2 = Add(d[1], d[0]);
  const Words z5 = High_Product(Sub(f0, f2), c->plus98);
  const Words z2 = Add(Add(f0, High_Product(f0, c->minus117)), z5), z4 = Add(Add(f2, High_Product(f2, c->plus78)), z5);
  const Words z3 = Add(f1, High_Product(f1, c->minus75));
  const Words g1 = Add(d[0], z3), g3 = Sub(d[0], z3);
  y[5] = Add(g3, z2), y[3] = Sub(g3, z2), y[1] = Add(g1, z4), y[7] = Sub(g1, z4);
}

static void First_Pass(const Constants* c, BlockSet* set) {
  Words sums[4], differences[4], y[8];
  Split_Columns(set->words, sums, differences);
  Butterfly(c, sums, differences, y);
  Transpose(y, set->words);
}

/** The samples come without their shift by 128, which the first value of all alone would notice. */
static void Second_Pass(const Constants* c, BlockSet* set) {
  Words sums[4], differences[4], y[8];
  for (int i = 0; i < 4; ++i) {
    const Words upper = Load_Words(set->words[i]), lower = Load_Words(set->words[7 - i]);
    sums[i] = Add(upper, lower);
    differences[i] = Sub(upper, lower);
  }
  Butterfly(c, sums, differences, y);
  y[0] = Sub(y[0], c->middle);
  for (int i = 0; i < 8; ++i) {
    const Words size = Size_Of(y[i]);
    const Words level = Add(High_Product(size, c->reciprocal[i]), Top_Bit(Low_Product(size, c->reciprocal[i])));
    Store_Words(set->words[i], With_Sign(Zero_Below(level, size, c->least[i]), y[i]));
  }
}

static void Prepare(Constants* c, const int16_t* forward, const int16_t* inverse) {
  for (int i = 0; i < 8; ++i) {
    c->reciprocal[i] = Add(Same_Row(forward + 8 * i), All(1));
    c->least[i] = Halved(Same_Row(inverse + 8 * i));
  }
  static const int16_t middle[8] = {64 * 128};
  c->middle = Same_Row(middle);
  c->minus75 = All(-75 * 256), c->minus117 = All(-117 * 256), c->plus78 = All(78 * 256), c->plus98 = All(98 * 256);
}

/* ---- Huffman coding ---- */

INLINE void Put_Entry(BitWriter* writer, uint32_t entry) {
  writer->bits = writer->bits << (entry & 63) | entry >> 8;
  writer->count += entry & 255;
}

/** Brings all whole bytes out; writes eight bytes, whatever their number. At most 63 bits may be pending. */
INLINE void Flush_Bytes(BitWriter* writer) {
  const uint64_t bytes = __builtin_bswap64(writer->bits << (-writer->count & 63));
  __builtin_memcpy(writer->next, &bytes, 8);
  writer->next += writer->count >> 3;
  writer->count &= 7;
}

INLINE void Put_Code(BitWriter* writer, const JdecHuffEncode* code, int32_t symbol) {
  writer->bits = writer->bits << code->size[symbol] | code->code[symbol];
  writer->count += (uint64_t)code->size[symbol];
}

/** A level behind a run, whatever they are. */
static __attribute__((noinline)) BitWriter Put_Any(BitWriter writer, const JdecHuffEncode* code, int32_t run, int32_t level) {
  for (; run > 15; run -= 16) {
    Put_Code(&writer, code, 0xF0);
    Flush_Bytes(&writer);
  }
  const int32_t size = 32 - __builtin_clz((uint32_t)(level < 0 ? -level : level));
  Put_Code(&writer, code, run * 16 + size);
  writer.bits = writer.bits << size | ((uint32_t)(level < 0 ? level - 1 : level) & ((1u << size) - 1));
  writer.count += (uint64_t)size;
  return writer;
}

INLINE void Put_Block(BitWriter* writer, const HuffEncodeTables* tables, const BlockSet* set, int32_t lane, int32_t* predictor) {
  const int32_t dc = set->words[0][lane][0];
  Put_Entry(writer, tables->dc[dc - *predictor + HuffDcReach]);
  *predictor = dc;
  uint64_t last = 0;
  for (uint64_t left = set->nonZero[lane] & ~(uint64_t)1; left;) {
    const uint64_t position = (uint64_t)__builtin_ctzll(left), step = position - last;
    left &= left - 1;
    last = position;
    const uint32_t entry = step > 16 ? 0 : tables->ac[step * 256 + (uint8_t)set->bytes[lane][Byte_Index(position)]];
    if (__builtin_expect(entry == 0, 0)) {
      const int32_t natural = scanOrder[position];
      *writer = Put_Any(*writer, tables->acCode, (int32_t)step - 1, set->words[natural / 8][lane][natural % 8]);
    } else {
      Put_Entry(writer, entry);
    }
    Flush_Bytes(writer);
  }
  Put_Entry(writer, last < 63 ? tables->ac[0] : 0);
  Flush_Bytes(writer);
}

/** Copies the bytes from..to with a 0 behind each 0xFF and gives where they end; null when that would be beyond `outEnd`. */
static uint8_t* Stuff_Bytes(const uint8_t* from, const uint8_t* to, uint8_t* out, const uint8_t* outEnd) {
  if (outEnd - out < 2 * (to - from) + CopyWidth) {
    for (; from < to; ++from) {
      if (outEnd - out < 1 + (*from == 0xFF)) return NULL;
      *out++ = *from;
      if (*from == 0xFF) *out++ = 0;
    }
    return out;
  }
  while (from < to) {
    const ptrdiff_t width = to - from < CopyWidth ? to - from : CopyWidth;
    const uint32_t found = Copy_And_Find(from, out);
    const ptrdiff_t clean = found ? __builtin_ctz(found) : CopyWidth, step = clean < width ? clean + 1 : width;
    from += step;
    out += step;
    if (clean < width) *out++ = 0;
  }
  return out;
}

/* ---- Rows of macroblocks ---- */

static void Load_Set(const EncodeSource* source, ptrdiff_t left, int32_t which, BlockSet* set);
static void Sort_Levels(const HuffEncodeTables* tables, BlockSet* set);

/** From samples to levels. The macroblock's left luma column is `left`. */
static void Transform_Unit(const HuffEncodeTables* tables, const Constants* luma, const Constants* chroma,
                           const EncodeSource* source, ptrdiff_t left, BlockSet* sets) {
  for (int32_t i = 0; i < UnitSets; ++i) Load_Set(source, left, i, sets + i);
  for (int32_t i = 0; i < UnitSets; ++i) First_Pass(luma, sets + i);
  for (int32_t i = 0; i < UnitSets; ++i) Second_Pass(i < LumaSets ? luma : chroma, sets + i);
  for (int32_t i = 0; i < UnitSets; ++i) Sort_Levels(tables, sets + i);
}

static void Put_Unit(BitWriter* writer, const HuffEncodeTables* tables, const BlockSet* sets, int32_t* predictors) {
  BitWriter local = *writer;
  int32_t luma = predictors[0];
  for (int32_t i = 0; i < 4; ++i) Put_Block(&local, &tables[0], sets + i / Lanes, i % Lanes, &luma);
  predictors[0] = luma;
  for (int32_t i = 4; i < 6; ++i) Put_Block(&local, &tables[1], sets + i / Lanes, i % Lanes, &predictors[i - 3]);
  *writer = local;
}

static int32_t Encode_Units(const HuffEncodeTables* tables, const EncodeSource* source, int32_t columns, HuffWriter* writer) {
  Constants luma, chroma;
  Prepare(&luma, source->lumaForward, source->lumaInverse);
  Prepare(&chroma, source->chromaForward, source->chromaInverse);
  BlockSet sets[StripUnits][UnitSets];
  uint8_t bytes[StripUnits * 6 * MostBlockBytes + 64];
  for (int32_t start = 0; start < columns; start += StripUnits) {
    const int32_t count = columns - start < StripUnits ? columns - start : StripUnits;
    for (int32_t i = 0; i < count; ++i) Transform_Unit(tables, &luma, &chroma, source, (ptrdiff_t)16 * (start + i), sets[i]);
    BitWriter bits = {writer->bits, (uint64_t)writer->bitCount, bytes};
    for (int32_t i = 0; i < count; ++i) Put_Unit(&bits, tables, sets[i], writer->predictors);
    writer->bits = bits.bits;
    writer->bitCount = (int32_t)bits.count;
    writer->next = Stuff_Bytes(bytes, bits.next, writer->next, writer->end);
    if (!writer->next) return 0;
  }
  return 1;
}
