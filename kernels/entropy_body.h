/* Decodes a strip. One lookup gives up to two values and the end of the block; whether a block ends is data here, not a branch,
 * for nobody could foretell it. What a lookup can't give goes through Careful_Symbol: long codes, and whatever stands at a
 * block's last positions. */

#include "kernels/kernels.h"

typedef size_t Window;
static const uint32_t WindowBits = 8 * sizeof(Window);

/** Bytes as a window, the first at the top. */
static Window Bytes_At(const uint8_t* data) {
  Window bits;
  __builtin_memcpy(&bits, data, sizeof bits);
  return sizeof bits == 8 ? (Window)__builtin_bswap64(bits) : (Window)__builtin_bswap32((uint32_t)bits);
}

/** The bits from a position on, at the top; at least WindowBits - 7 of them. */
static Window Window_At(const uint8_t* data, size_t position) { return Bytes_At(data + (position >> 3)) << (position & 7); }

/** The symbol at the top of a window, and the bits that it takes. */
static uint32_t Symbol_At(Window window, const JdecHuffLookup* lookup, uint32_t* taken) {
  const uint32_t first = (uint32_t)(window >> (WindowBits - 8));
  *taken = lookup->lengths[first];
  if (*taken != 0) return lookup->values[first];
  const uint32_t slot = lookup->values[first];
  if (slot == 0) return 0;
  const uint32_t second = (uint32_t)(window >> (WindowBits - 16)) & 0xFF;
  *taken = lookup->secondLengths[slot][second];
  if (*taken != 0) return lookup->secondValues[slot][second];
  *taken = 8;
  return 0;
}

/** A value of `size` bits, 1 to 11, at a position; the lower half of the range stands for negative numbers. */
static int32_t Value_At(const uint8_t* data, size_t position, uint32_t size) {
  const int32_t value = (int32_t)(Window_At(data, position) >> (WindowBits - size));
  return value < 1 << (size - 1) ? value + 1 - (1 << size) : value;
}

/** One symbol by the rule. Gives a step (StripTables) and moves *progress on, to the block's end at most. */
__attribute__((noinline)) static uint32_t Careful_Symbol(const StripReader* reader, size_t position, const StripTables* tables,
                                                         uint32_t luma, StripProgress* progress, int16_t* block) {
  const HuffTables* const codes = tables->symbolwise;
  const Window window = Window_At(reader->data, position);
  const uint32_t k = *progress & 0xFF;
  uint32_t taken;
  if (k == 0) {
    const uint32_t size = Symbol_At(window, luma ? codes->dcLuma : codes->dcChroma, &taken);
    if (size != 0) block[0] = (int16_t)Value_At(reader->data, position + taken, size);
    *progress += 1;
    return taken + size;
  }
  const uint32_t symbol = Symbol_At(window, luma ? codes->acLuma : codes->acChroma, &taken);
  const uint32_t run = symbol / 16, size = symbol % 16;
  if (size == 0 && run < 15) return taken | StepEnd;
  if (size != 0) {
    const int32_t value = Value_At(reader->data, position + taken, size);
    block[tables->places[k + run]] = (int16_t)value;
    *progress += (uint32_t)(value < 0 ? -value : value) << StripSizeShift;
  }
  const uint32_t next = k + run + 1;
  *progress += (next > 64 ? 64 : next) - k;
  return (taken + size) | (next > 63 ? StepEnd : 0);
}

static void Decode_Strip(StripReader* reader, const StripTables* tables, int16_t* blocks, StripReach* reach,
                         int32_t macroblocks) {
  // For a shorter strip the end of a full one's sequence.
  const uint8_t* const* const sequence = tables->sequence + (ptrdiff_t)2 * 6 * (StripMacroblocks - macroblocks);
  const size_t stop = (size_t)(6 * macroblocks);
  // So far behind the end that no bit of a window is data.
  const uint8_t* const limit = reader->data + reader->end / 8 + sizeof(Window);
  size_t position = reader->position, b = 0;
  StripProgress progress = 0;
  const uint8_t* table = sequence[0];

  for (;;) {
    // The top `count` bits of the window are to be used. Below them may stand the bits that follow, which filling up sets again.
    Window window = Window_At(reader->data, position);
    uint32_t count = WindowBits - 8 - (uint32_t)(position & 7), left;
    const uint8_t* bytes = reader->data + (position >> 3) + (sizeof(Window) - 1);
    do {
      if (bytes > limit) bytes = limit;
      window |= Bytes_At(bytes) >> count;
      bytes += (WindowBits - 1 - count) >> 3;
      count |= WindowBits - 8;
      uint32_t used = 0;
      left = (WindowBits - 7) / StripLookupBits;
      do {
        const size_t index = window >> (WindowBits - StripLookupBits);
        const uint32_t step = table[index];
        const StripSymbols* const symbols = &tables->symbols[(size_t)(table - tables->steps) + index];
        const StripProgress next = progress + symbols->progress;
        if (next & StripPastEnd) break;
        const uint8_t* const places = tables->places + (progress & 0xFF);
        int16_t* const block = blocks + tables->offsets[b];
        block[places[symbols->positions[0]]] = symbols->values[0];
        block[places[symbols->positions[1]]] = symbols->values[1];
        reach->blocks[b] = next;
        window <<= step & 63;
        used += step;
        const uint8_t* const same = sequence[2 * b + 1];
        const uint8_t* const other = sequence[2 * b + 2];
        table = __builtin_expect_with_probability((step & StepEnd) != 0, 1, 0.5) ? other : same;
        const uint32_t ended = step / StepEnd;
        progress = next & (ended - 1);
        b += ended;
      } while (--left != 0);
      count -= used & 63;
    } while (left == 0);

    position = (size_t)(bytes - reader->data) * 8 - count;
    if (b == stop) break;
    const uint32_t step = Careful_Symbol(reader, position, tables, b % 6 < 4, &progress, blocks + tables->offsets[b]);
    position += step & 63;
    reach->blocks[b] = progress;
    const uint32_t ended = step / StepEnd;
    table = sequence[2 * b + 1 + ended];
    progress &= ended - 1;
    b += ended;
  }
  reader->position = position;
}
