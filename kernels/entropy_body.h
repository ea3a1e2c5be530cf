/* Decodes a strip. One lookup gives up to two values and the end of the block; whether a block ends is data here, not a branch,
 * for nobody could foretell it. What a lookup can't give goes through Careful_Symbol: long codes, and whatever stands at a
 * block's last positions. */

#include "kernels/kernels.h"

typedef size_t Window;
static const uint32_t WindowBits = 8 * sizeof(Window);

/** The bits from a position on, at the top; at least WindowBits - 7 of them. */
static Window Window_At(const uint8_t* data, size_t position) {
  Window bits;
  __builtin_memcpy(&bits, data + (position >> 3), sizeof bits);
  bits = sizeof bits == 8 ? (Window)__builtin_bswap64(bits) : (Window)__builtin_bswap32((uint32_t)bits);
  return bits << (position & 7);
}

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

/** One symbol by the rule; sum: that of sizes. Gives a step (StripTables) whose advance stops at the block's end. */
__attribute__((noinline)) static uint32_t Careful_Symbol(const StripReader* reader, size_t position, const StripTables* tables,
                                                         uint32_t luma, uint32_t k, int16_t* block, uint16_t* sum) {
  const HuffTables* const codes = tables->symbolwise;
  const Window window = Window_At(reader->data, position);
  uint32_t taken;
  if (k == 0) {
    const uint32_t size = Symbol_At(window, luma ? codes->dcLuma : codes->dcChroma, &taken);
    if (size != 0) block[0] = (int16_t)Value_At(reader->data, position + taken, size);
    return (taken + size) | 1u << StepAdvance;
  }
  const uint32_t symbol = Symbol_At(window, luma ? codes->acLuma : codes->acChroma, &taken);
  const uint32_t run = symbol / 16, size = symbol % 16;
  uint32_t next = k + run + 1;
  if (size != 0) {
    const int32_t value = Value_At(reader->data, position + taken, size);
    block[tables->places[k + run]] = (int16_t)value;
    *sum = (uint16_t)(*sum + (value < 0 ? -value : value));
  } else if (run < 15) {
    return taken | StepEnd;
  }
  const uint32_t ends = next > 63 ? StepEnd : 0;
  if (next > 64) next = 64;
  return (taken + size) | ends | (next - k) << StepAdvance;
}

static void Decode_Strip(StripReader* reader, const StripTables* tables, int16_t* blocks, StripReach* reach,
                         int32_t macroblocks) {
  // A shorter strip is the end of a full one.
  const size_t start = (size_t)(6 * (StripMacroblocks - macroblocks)), stop = 6 * StripMacroblocks;
  blocks -= tables->offsets[start];
  uint8_t* const positions = reach->positions - start;
  uint16_t* const sizes = reach->sizes - start;
  const uint8_t* const data = reader->data;
  const uint8_t* const places = tables->places;
  const size_t end = reader->end;
  size_t position = reader->position, b = start;
  uint32_t k = 0, size = 0;
  const uint16_t* table = tables->sequence[2 * start];

  for (;;) {
    if (position > end) position = end;
    Window window = Window_At(data, position);
    uint32_t used = 0;
    uint32_t left = (WindowBits - 7) / StripLookupBits;
    do {
      const size_t index = window >> (WindowBits - StripLookupBits);
      const uint32_t step = table[index];
      const uint32_t next = k + (step >> StepAdvance);
      if (next > 63) break;
      const StripSymbols* const symbols = &tables->symbols[0][(size_t)(table - tables->steps[0]) + index];
      int16_t* const block = blocks + tables->offsets[b];
      block[places[k + symbols->positions[0]]] = symbols->values[0];
      block[places[k + symbols->positions[1]]] = symbols->values[1];
      positions[b] = (uint8_t)next;
      size += symbols->size;
      sizes[b] = (uint16_t)size;
      window <<= step & 63;
      used += step;
      const uint32_t ends = step / StepEnd & 1;
      const uint16_t* const same = tables->sequence[2 * b + 1];
      const uint16_t* const other = tables->sequence[2 * b + 2];
      table = __builtin_expect_with_probability((step & StepEnd) != 0, 1, 0.5) ? other : same;
      k = next & (ends - 1);
      size &= ends - 1;
      b += ends;
    } while (--left != 0);
    position += used & 63;
    if (left == 0) continue;

    if (b == stop) break;
    const uint32_t luma = b % 6 < 4;
    uint16_t sum = (uint16_t)size;
    const uint32_t step = Careful_Symbol(reader, position, tables, luma, k, blocks + tables->offsets[b], &sum);
    position += step & 63;
    k += step >> StepAdvance;
    positions[b] = (uint8_t)k;
    sizes[b] = sum;
    const uint32_t ends = step / StepEnd & 1;
    table = tables->sequence[2 * b + 1 + ends];
    k &= ends - 1;
    size = sum & (ends - 1);
    b += ends;
  }
  reader->position = position;
}
