/* Decodes a strip. One lookup gives up to two values and the end of the block; whether a block ends is data here, not a branch,
 * for nobody could foretell it. What a lookup can't give goes through Careful_Symbol: long codes, and whatever stands at a
 * block's last positions. */

#include "kernels/kernels.h"

#define INLINE static inline __attribute__((always_inline))

typedef size_t Window;
static const uint32_t WindowBits = 8 * sizeof(Window);

/** Bytes as a window, the first at the top. */
static Window Bytes_At(const uint8_t* data) {
  Window bits;
  __builtin_memcpy(&bits, data, sizeof bits);
  return sizeof bits == 8 ? (Window)__builtin_bswap64(bits) : (Window)__builtin_bswap32((uint32_t)bits);
}

/** Where a strip's decoding stands: the top `count` bits of the window are to be used. Below them may stand the bits that follow,
 *  which filling up sets again. */
struct BitWindow {
  Window window;
  uint32_t count;
  const uint8_t* bytes;  ///< What fills the window up next.
  const uint8_t* limit;  ///< So far behind the data's end that no bit of a window is data.
};

INLINE struct BitWindow Open_Window(const StripReader* reader) {
  const uint8_t* const bytes = reader->data + (reader->position >> 3);
  const uint32_t before = (uint32_t)(reader->position & 7);
  return {Bytes_At(bytes) << before, WindowBits - 8 - before, bytes + sizeof(Window) - 1,
          reader->data + reader->end / 8 + sizeof(Window)};
}

/** To WindowBits - 8 bits at least. */
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

/** By the order of the tables. */
INLINE const JdecHuffLookup* Lookup_Of(const HuffTables* codes, uint32_t table) {
  const JdecHuffLookup* const dc = table < 2 ? codes->dcLuma : codes->dcChroma;
  const JdecHuffLookup* const ac = table < 2 ? codes->acLuma : codes->acChroma;
  return table % 2 == 0 ? dc : ac;
}

/** Takes a code and gives its symbol; 0 for bits that are no code. */
INLINE uint32_t Take_Symbol(BitWindow* bits, const JdecHuffLookup* lookup) {
  const uint32_t first = (uint32_t)(bits->window >> (WindowBits - 8));
  uint32_t length = lookup->lengths[first], symbol = lookup->values[first];
  if (length == 0 && symbol != 0) {
    const uint32_t slot = symbol, second = (uint32_t)(bits->window >> (WindowBits - 16)) & 0xFF;
    length = lookup->secondLengths[slot][second];
    symbol = lookup->secondValues[slot][second];
    if (length == 0) length = 8, symbol = 0;
  }
  Use(bits, length);
  return symbol;
}

/** Takes a value of `size` bits, 0 to 15; the lower half of the range stands for negative numbers. */
INLINE int32_t Take_Value(BitWindow* bits, uint32_t size) {
  // In two shifts, as one by all the bits is none.
  const int32_t value = (int32_t)(bits->window >> 1 >> (WindowBits - 1 - size));
  const int32_t negative = (int32_t)(~bits->window >> (WindowBits - 1));
  Use(bits, size);
  return value - (negative << size) + negative;
}

/** The next symbol by the rule: sets the block's progress, to its end at most. Gives 1 when the block ends. */
INLINE uint32_t Careful_Symbol(BitWindow* bits, const JdecHuffLookup* lookup, const uint8_t* places, StripProgress* progress,
                               int16_t* block) {
  const uint32_t k = *progress & 0xFF, symbol = Take_Symbol(bits, lookup);
  if (WindowBits < 64) Fill(bits);
  const uint32_t run = symbol / 16, size = symbol % 16, next = k + run + 1;
  if (size == 0 && k != 0) {
    if (run < 15) return 1;
  } else {
    const int32_t value = Take_Value(bits, size);
    block[places[k + run]] = (int16_t)value;
    if (k != 0) *progress += (uint32_t)(value < 0 ? -value : value) << StripSizeShift;
  }
  *progress += (next > 64 ? 64 : next) - k;
  return next > 63;
}

static void Decode_Strip(StripReader* reader, const StripTables* tables, int16_t* blocks, StripReach* reach,
                         int32_t macroblocks) {
  // For a shorter strip the end of a full one's sequence.
  const uint8_t* const* const sequence = tables->sequence + (ptrdiff_t)2 * 6 * (StripMacroblocks - macroblocks);
  const size_t stop = (size_t)6 * (size_t)macroblocks;
  BitWindow bits = Open_Window(reader);
  size_t b = 0;
  StripProgress progress = 0;
  const uint8_t* table = sequence[0];

  for (;;) {
    Fill(&bits);
    uint32_t used = 0, left = (WindowBits - 7) / StripLookupBits;
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
    if (left == 0) continue;

    if (b == stop) break;
    Fill(&bits);
    const JdecHuffLookup* const lookup = Lookup_Of(tables->symbolwise, (uint32_t)((table - tables->steps) >> StripLookupBits));
    const uint32_t ended = Careful_Symbol(&bits, lookup, tables->places, &progress, blocks + tables->offsets[b]);
    reach->blocks[b] = progress;
    table = sequence[2 * b + 1 + ended];
    progress &= ended - 1;
    b += ended;
  }
  reader->position = (size_t)(bits.bytes - reader->data) * 8 - bits.count;
}
