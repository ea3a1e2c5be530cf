/* Samples to bytes, for the vector levels' encodeRow: transform and quantisation in 16 bits, Huffman coding, byte stuffing. A
 * macroblock goes through one stage after another, since each is a short chain of which the processor can run several at once.
 *
 * A level defines Split_Columns, Count_Bits, Lowest_Bit and Byte_Index before this file, and Load_Set and Sort_Coefficients after
 * it. */

static const ptrdiff_t VectorSize = sizeof(Vector);
enum { UnitSets = 6 / Lanes, LumaSets = 4 / Lanes };
/** Of a block: 63 coefficients of 26 bits and DC of 22; two entries a coefficient, DC, and one after the end. */
enum { MostBlockBytes = 208, MostBlockEntries = 128 };

/** Blocks between samples and bits, one in each lane of a vector. */
typedef struct {
  int16_t words[8][Lanes][8];  ///< Work of the transform; in the end the coefficients, row by row.
  uint64_t nonZero[Lanes];     ///< Coefficients other than 0, by scan position.
  int8_t bytes[Lanes][72];     ///< Coefficients as bytes, larger ones as -128 or 127, in the order of Byte_Index; then a 0.
} __attribute__((aligned(32))) BlockSet;

/** Factors and limits of a quantisation, and the transform's constants. They stay in memory: the samples need the registers. */
typedef struct {
  Vector reciprocal[8], least[8];
  Vector minus75, minus117, plus78, plus98, middle;
} __attribute__((aligned(32))) Constants;

/** Scan position to natural position. */
static const uint8_t scanOrder[65] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
                                      41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
                                      30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63, 64};

/* ---- Transform ---- */

/** One 8-point pass, from sums and differences of opposite values. x * c >> 8 is x + (x * (c - 256) >> 8), exactly. */
INLINE void Butterfly(const Constants* c, const Vector* a, const Vector* d, Vector* y) {
  const Vector e0 = Add_16(a[0], a[3]), e3 = Subtract_16(a[0], a[3]), e1 = Add_16(a[1], a[2]), e2 = Subtract_16(a[1], a[2]);
  const Vector e23 = Add_16(e2, e3), z1 = Add_16(e23, Multiply_High_16(e23, c->minus75));
  y[0] = Add_16(e0, e1), y[4] = Subtract_16(e0, e1), y[2] = Add_16(e3, z1), y[6] = Subtract_16(e3, z1);

  const Vector f0 = Add_16(d[3], d[2]), f1 = Add_16(d[2], d[1]), f2 = Add_16(d[1], d[0]);
  const Vector z5 = Multiply_High_16(Subtract_16(f0, f2), c->plus98);
  const Vector z2 = Add_16(Add_16(f0, Multiply_High_16(f0, c->minus117)), z5),
               z4 = Add_16(Add_16(f2, Multiply_High_16(f2, c->plus78)), z5);
  const Vector z3 = Add_16(f1, Multiply_High_16(f1, c->minus75));
  const Vector g1 = Add_16(d[0], z3), g3 = Subtract_16(d[0], z3);
  y[5] = Add_16(g3, z2), y[3] = Subtract_16(g3, z2), y[1] = Add_16(g1, z4), y[7] = Subtract_16(g1, z4);
}

static void First_Pass(const Constants* c, BlockSet* set) {
  Vector sums[4], differences[4], y[8];
  Split_Columns(set->words, sums, differences);
  Butterfly(c, sums, differences, y);
  Transpose_16(y);
  for (int i = 0; i < 8; ++i) Store_Aligned(set->words[i], y[i]);
}

/** The samples are not yet shifted by 128. Only the first value depends on that. */
static void Second_Pass(const Constants* c, BlockSet* set) {
  Vector sums[4], differences[4], y[8];
  for (int i = 0; i < 4; ++i) {
    const Vector upper = Load_Aligned(set->words[i]), lower = Load_Aligned(set->words[7 - i]);
    sums[i] = Add_16(upper, lower);
    differences[i] = Subtract_16(upper, lower);
  }
  Butterfly(c, sums, differences, y);
  y[0] = Subtract_16(y[0], c->middle);
  for (int i = 0; i < 8; ++i) {
    const Vector size = Absolute_16(y[i]);
    const Vector quantised =
        Add_16(Multiply_High_16(size, c->reciprocal[i]), Shift_Right_Unsigned_16(Multiply_Low_16(size, c->reciprocal[i]), 15));
    Store_Aligned(set->words[i], Copy_Sign_16(Clear_Where(Greater_16(c->least[i], size), quantised), y[i]));
  }
}

static void Prepare(Constants* c, const int16_t* forward, const int16_t* inverse) {
  for (int i = 0; i < 8; ++i) {
    c->reciprocal[i] = Add_16(Load_Each_Lane(forward + 8 * i), Broadcast_16(1));
    c->least[i] = Shift_Right_16(Load_Each_Lane(inverse + 8 * i), 1);
  }
  static const int16_t middle[8] = {64 * 128};
  c->middle = Load_Each_Lane(middle);
  c->minus75 = Broadcast_16(-75 * 256), c->minus117 = Broadcast_16(-117 * 256);
  c->plus78 = Broadcast_16(78 * 256), c->plus98 = Broadcast_16(98 * 256);
}

/* ---- Huffman coding ---- */

static inline uint32_t Code_Entry(const JdecHuffEncode* code, int32_t symbol) {
  return code->code[symbol] << 8 | (uint32_t)code->size[symbol];
}

/** Lists all coefficients of a block, whatever they are: zeros by sixteen, code and value as two entries. */
static __attribute__((noinline)) uint32_t* List_Any(const JdecHuffEncode* code, const BlockSet* set, int32_t lane, uint64_t left,
                                                    uint32_t* out) {
  for (int32_t last = 0; left; left &= left - 1) {
    const int32_t position = __builtin_ctzll(left), natural = scanOrder[position];
    int32_t run = position - last - 1;
    last = position;
    for (; run > 15; run -= 16) *out++ = Code_Entry(code, 0xF0);
    const int32_t value = set->words[natural / 8][lane][natural % 8];
    const int32_t size = 32 - __builtin_clz((uint32_t)(value < 0 ? -value : value));
    *out++ = Code_Entry(code, run * 16 + size);
    *out++ = ((uint32_t)(value < 0 ? value - 1 : value) & ((1u << size) - 1)) << 8 | (uint32_t)size;
  }
  return out;
}

/** Lists what is to be written for a block: DC, the other coefficients, end. */
INLINE uint32_t* List_Block(const HuffEncodeTables* tables, const BlockSet* set, int32_t lane, int32_t* predictor,
                            uint32_t* out) {
  const int32_t dc = set->words[0][lane][0];
  *out++ = tables->dc[dc - *predictor + HuffDcReach];
  *predictor = dc;
  const uint16_t* const acRows = tables->acRows;
  const uint32_t* const ac = tables->ac;
  const uint8_t* const bytes = (const uint8_t*)set->bytes[lane];
  const uint64_t others = set->nonZero[lane] & ~(uint64_t)1;
  uint32_t *next = out, *end = out + Count_Bits(others);
  uint64_t last = 0;
  uint32_t any = 0;
  // Two at a time; where only one is left, position 64 gives an entry that means nothing.
  for (uint64_t left = others; left; left &= left - 1, next += 2) {
    const uint64_t position = Lowest_Bit(left);
    left &= left - 1;
    const uint32_t entry = ac[(size_t)acRows[position - last] + bytes[Byte_Index(position)]];
    last = Lowest_Bit(left);
    const uint32_t second = ac[(size_t)acRows[last - position] + bytes[Byte_Index(last)]];
    next[0] = entry;
    next[1] = second;
    any |= entry | second;
  }
  if (__builtin_expect((int32_t)any < 0, 0)) end = List_Any(tables->acCode, set, lane, others, out);
  *end = ac[0];
  return end + (others >> 63 == 0);
}

/** Writes the bits of the entries from..to after the writer's pending ones, two entries at a time, and gives where the whole
 * bytes end. The entry at `to` is overwritten, and up to 8 bytes after the end. */
static uint8_t* Put_Entries(HuffWriter* writer, uint32_t* from, uint32_t* to, uint8_t* out) {
  uint64_t bits = writer->bits, count = (uint64_t)writer->bitCount;
  *to = 0;
  for (; from < to; from += 2) {
    const uint32_t length = (from[0] + from[1]) & 0xFF;
    bits = bits << length | (uint64_t)(from[0] >> 8) << (from[1] & 63) | from[1] >> 8;
    count += length;
    const uint64_t bytes = __builtin_bswap64(bits << (-count & 63));
    __builtin_memcpy(out, &bytes, 8);
    out += count >> 3;
    count &= 7;
  }
  writer->bits = bits;
  writer->bitCount = (int32_t)count;
  return out;
}

/** Copies the bytes from..to with a 0 after each 0xFF and gives where they end; null when that would be beyond `outEnd`. */
static uint8_t* Stuff_Bytes(const uint8_t* from, const uint8_t* to, uint8_t* out, const uint8_t* outEnd) {
  if (outEnd - out < 2 * (to - from) + VectorSize) {
    for (; from < to; ++from) {
      if (outEnd - out < 1 + (*from == 0xFF)) return NULL;
      *out++ = *from;
      if (*from == 0xFF) *out++ = 0;
    }
    return out;
  }
  while (from < to) {
    const ptrdiff_t width = to - from < VectorSize ? to - from : VectorSize;
    const uint32_t found = Copy_And_Find(from, out);
    const ptrdiff_t clean = found ? __builtin_ctz(found) : VectorSize, step = clean < width ? clean + 1 : width;
    from += step;
    out += step;
    if (clean < width) *out++ = 0;
  }
  return out;
}

/* ---- Macroblock rows ---- */

/** Columns 0 to 3 of samples, or pairs of columns, from rows whose words are interleaved in twos. */
INLINE void Store_Columns(Vector rows01, Vector rows23, Vector rows45, Vector rows67, BlockSet* set) {
  Vector columns[4];
  Transpose_32(rows01, rows23, rows45, rows67, columns);
  for (int i = 0; i < 4; ++i) Store_Aligned(set->words[i], columns[i]);
}

static void Load_Set(const EncodeSource* source, ptrdiff_t left, int32_t which, BlockSet* set);
static void Sort_Coefficients(const HuffEncodeTables* tables, BlockSet* set);

/** From samples to coefficients. The macroblock's left luma column is `left`. */
static void Transform_Unit(const HuffEncodeTables* tables, const Constants* luma, const Constants* chroma,
                           const EncodeSource* source, ptrdiff_t left, BlockSet* sets) {
  for (int32_t i = 0; i < UnitSets; ++i) Load_Set(source, left, i, sets + i);
  for (int32_t i = 0; i < UnitSets; ++i) First_Pass(luma, sets + i);
  for (int32_t i = 0; i < UnitSets; ++i) Second_Pass(i < LumaSets ? luma : chroma, sets + i);
  for (int32_t i = 0; i < UnitSets; ++i) Sort_Coefficients(tables, sets + i);
}

static uint32_t* List_Unit(const HuffEncodeTables* tables, const BlockSet* sets, int32_t* predictors, uint32_t* out) {
  for (int32_t i = 0; i < 4; ++i) out = List_Block(&tables[0], sets + i / Lanes, i % Lanes, &predictors[0], out);
  for (int32_t i = 4; i < 6; ++i) out = List_Block(&tables[1], sets + i / Lanes, i % Lanes, &predictors[i - 3], out);
  return out;
}

static int32_t Encode_Units(const HuffEncodeTables* tables, const EncodeSource* source, int32_t columns, HuffWriter* writer) {
  Constants luma, chroma;
  Prepare(&luma, source->lumaForward, source->lumaInverse);
  Prepare(&chroma, source->chromaForward, source->chromaInverse);
  BlockSet sets[UnitSets];
  for (int32_t i = 0; i < 6; ++i) sets[i / Lanes].bytes[i % Lanes][64] = 0;
  uint32_t entries[6 * MostBlockEntries];
  uint8_t bytes[6 * MostBlockBytes + 64];
  for (int32_t i = 0; i < columns && writer->next; ++i) {
    Transform_Unit(tables, &luma, &chroma, source, (ptrdiff_t)16 * i, sets);
    uint32_t* const entriesEnd = List_Unit(tables, sets, writer->predictors, entries);
    const uint8_t* const bytesEnd = Put_Entries(writer, entries, entriesEnd, bytes);
    writer->next = Stuff_Bytes(bytes, bytesEnd, writer->next, writer->end);
  }
  return writer->next != NULL;
}
