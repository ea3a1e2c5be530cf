/* Decodes a strip, at every vector level. One lookup gives up to two values and the end of the block. Whether a block ends
 * selects the next table, since a branch could not be predicted. What a lookup can't give goes through Careful_Symbol: long
 * codes, and the last positions of a block. */

#define INLINE static inline __attribute__((always_inline))

typedef size_t Window;
static const uint32_t WindowBits = 8 * sizeof(Window);

/** Bytes as a window, the first at the top. */
static Window Bytes_At(const uint8_t* data) {
  Window bits;
  __builtin_memcpy(&bits, data, sizeof bits);
  return sizeof bits == 8 ? (Window)__builtin_bswap64(bits) : (Window)__builtin_bswap32((uint32_t)bits);
}

/** Where the decoding of a strip stands: the top `count` bits of the window are valid. The bits below them may already be set to
 *  those that follow; filling sets them again. */
struct BitWindow {
  Window window;
  uint32_t count;
  const uint8_t* bytes;  ///< What fills the window next.
  const uint8_t* limit;  ///< So far after the data's end that no bit of a window is data.
};

INLINE struct BitWindow Open_Window(const StripReader* reader) {
  const uint8_t* const bytes = reader->data + (reader->position >> 3);
  const uint32_t before = (uint32_t)(reader->position & 7);
  return {Bytes_At(bytes) << before, WindowBits - 8 - before, bytes + sizeof(Window) - 1,
          reader->data + reader->end / 8 + sizeof(Window)};
}

/** Fills the window to at least WindowBits - 8 bits. */
INLINE void Fill(BitWindow* bits) {
  if (bits->bytes > bits->limit) bits->bytes = bits->limit;
  bits->window |= Bytes_At(bits->bytes) >> bits->count;
  bits->bytes += (WindowBits - 1 - bits->count) >> 3;
  bits->count |= WindowBits - 8;
}

INLINE void Use(BitWindow* bits, uint32_t count) {
  bits->window <<= count;
  bits->count -= count;
}

/** What the next bits begin with. Low byte: the symbol, or 0 for bits that are no code; above it: the bits of code and value. */
INLINE uint32_t Code_At(Window window, const uint16_t* codes) {
  const uint32_t next = (uint32_t)(window >> (WindowBits - 16));
  return codes[next < 0xFF00 ? next >> (16 - StripLookupBits) : next - 0xFF00 + (1 << StripLookupBits)];
}

/** The value of `size` bits, 0 to 15, at the window's top; the lower half of the range stands for negative numbers. */
INLINE int32_t Value_At(Window window, uint32_t size) {
  // In two shifts, since a shift by all bits is undefined.
  const int32_t value = (int32_t)(window >> 1 >> (WindowBits - 1 - size)), negative = (int32_t)(~window >> (WindowBits - 1));
  return value - (negative << size) + negative;
}

/** Decodes a single symbol as the plain kernel does, and moves the block's progress on, at most to the block's end. Gives 1 when
 * the block ends. */
INLINE uint32_t Careful_Symbol(BitWindow* bits, const uint16_t* codes, const uint8_t* places, StripProgress* progress,
                               int16_t* block) {
  const uint32_t k = *progress & 0xFF, code = Code_At(bits->window, codes);
  const uint32_t run = code / 16 % 16, size = code % 16, all = code >> 8, next = k + run + 1;
  int32_t value;
  if (WindowBits < 64) {
    Use(bits, all - size);
    Fill(bits);
    value = Value_At(bits->window, size);
    Use(bits, size);
  } else {
    value = Value_At(bits->window << (all - size), size);
    Use(bits, all);
  }
  if (size == 0 && k != 0) {
    if (run < 15) return 1;
  } else {
    block[places[k + run]] = (int16_t)value;
    if (k != 0) *progress += (uint32_t)(value < 0 ? -value : value) << StripSizeShift;
  }
  *progress += (next > 64 ? 64 : next) - k;
  return next > 63;
}

/** Decodes the block's other symbols. */
INLINE void Careful_Block(BitWindow* bits, const uint16_t* codes, const uint8_t* places, StripProgress* progress,
                          int16_t* block) {
  uint32_t ended;
  do {
    Fill(bits);
    ended = Careful_Symbol(bits, codes, places, progress, block);
    // A full window has room for two.
    if (WindowBits == 64 && !ended) ended = Careful_Symbol(bits, codes, places, progress, block);
  } while (!ended);
}

/** Of the code whose table of steps is given. */
INLINE const uint16_t* Codes_Of(const StripTables* tables, const uint8_t* table) {
  return tables->codes + ((table - tables->steps) >> StripLookupBits) * StripCodeEntries;
}

/** A full window is enough for MostSteps. If a lookup fails within EasySteps after another one did, the block is decoded to its
 * end symbol by symbol: in data full of long codes each symbol would cost a mispredicted branch otherwise. */
static const uint32_t MostSteps = (WindowBits - 7) / StripLookupBits, EasySteps = 1;

static void Decode_Strip(StripReader* reader, const StripTables* tables, int16_t* blocks, StripReach* reach,
                         int32_t macroblocks) {
  // A shorter strip uses the end of a full strip's sequence.
  const uint8_t* const* const sequence = tables->sequence + (ptrdiff_t)2 * 6 * (StripMacroblocks - macroblocks);
  const size_t stop = (size_t)6 * (size_t)macroblocks;
  BitWindow bits = Open_Window(reader);
  size_t b = 0;
  uint32_t easy = 1;  // Whether all steps of a window have succeeded since the last failure.
  StripProgress progress = 0;
  const uint8_t* table = sequence[0];

  for (;;) {
    Fill(&bits);
    uint32_t used = 0, left = MostSteps;
    do {
      const size_t index = bits.window >> (WindowBits - StripLookupBits);
      const uint32_t step = table[index];
      const StripSymbols* const symbols = &tables->symbols[(size_t)(table - tables->steps) + index];
      const StripProgress next = progress + symbols->progress;
      if (next & StripPastEnd) break;
      const uint8_t* const places = tables->places + (progress & 0xFF);
      int16_t* const block = blocks + tables->offsets[b];
      block[places[symbols->positions[0]]] = symbols->values[0];
      block[places[symbols->positions[1]]] = symbols->values[1];
      reach->blocks[b] = next;
      bits.window <<= step & 63;
      used += step;
      const uint8_t* const same = sequence[2 * b + 1];
      const uint8_t* const other = sequence[2 * b + 2];
      table = __builtin_expect_with_probability((step & StepEnd) != 0, 1, 0.5) ? other : same;
      const uint32_t ended = step / StepEnd;
      progress = next & (ended - 1);
      b += ended;
    } while (--left != 0);
    bits.count -= used & 63;
    if (left == 0) {
      easy = 1;
      continue;
    }

    if (b == stop) break;
    Fill(&bits);
    int16_t* const block = blocks + tables->offsets[b];
    uint32_t ended = Careful_Symbol(&bits, Codes_Of(tables, table), tables->places, &progress, block);
    if (!ended && !easy && left > MostSteps - EasySteps) {
      Careful_Block(&bits, Codes_Of(tables, sequence[2 * b + 1]), tables->places, &progress, block);
      ended = 1;
    }
    easy = 0;
    reach->blocks[b] = progress;
    table = sequence[2 * b + 1 + ended];
    progress &= ended - 1;
    b += ended;
  }
  reader->position = (size_t)(bits.bytes - reader->data) * 8 - bits.count;
}
