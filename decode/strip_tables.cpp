#include "decode/strip_tables.h"

#include "decode/huffman_codes.h"

namespace {

constexpr int32_t Entries = 1 << StripLookupBits;

/** The codes by the next bits: symbol and length of the code that these bits begin with; length 0 if that code is longer. */
struct ShortCodes {
  uint8_t lengths[Entries];
  uint8_t symbols[Entries];
};

constexpr ShortCodes Short_Codes(const HuffCode& huffCode) {
  ShortCodes codes{};
  int32_t code = 0;
  size_t next = 0;
  for (int32_t length = 1; length <= StripLookupBits; ++length, code <<= 1) {
    for (int32_t n = huffCode.bits[length - 1]; n > 0; --n, ++code, ++next) {
      const int32_t spare = StripLookupBits - length;
      for (int32_t i = code << spare; i < (code + 1) << spare; ++i) {
        codes.lengths[i] = static_cast<uint8_t>(length);
        codes.symbols[i] = huffCode.values[next];
      }
    }
  }
  return codes;
}

/** What an index was found to hold so far. */
struct Found {
  int32_t used = 0, advance = 0, values = 0, sizes = 0;
  bool ended = false;
  StripSymbols symbols{};
};

/** Bits `from` to `from + count` of an index. */
constexpr int32_t Bits(int32_t index, int32_t from, int32_t count) {
  return index >> (StripLookupBits - from - count) & ((1 << count) - 1);
}

constexpr void Add_Value(Found* found, int32_t index, int32_t run, int32_t size, bool isDc) {
  int32_t value = size == 0 ? 0 : Bits(index, found->used, size);
  if (size != 0 && value < 1 << (size - 1)) value += 1 - (1 << size);
  for (int32_t i = found->values; i < 2; ++i) {
    found->symbols.values[i] = static_cast<int16_t>(value);
    found->symbols.positions[i] = static_cast<uint8_t>(found->advance + run);
  }
  if (!isDc) found->sizes += value < 0 ? -value : value;
  ++found->values;
  found->used += size;
  found->advance += run + 1;
}

/** Takes one more symbol. False if its code and value are not whole within the index, or if no other symbol can follow it. */
constexpr bool Take_Symbol(Found* found, int32_t index, const ShortCodes& codes, bool isDc) {
  const int32_t next = index << found->used & (Entries - 1);
  const int32_t length = codes.lengths[next], symbol = codes.symbols[next];
  const int32_t run = isDc ? 0 : symbol / 16, size = symbol % 16;
  if (length == 0 || found->used + length + size > StripLookupBits) return false;
  if (isDc || size != 0) {
    if (found->values == 2) return false;
    found->used += length;
    Add_Value(found, index, run, size, isDc);
    return true;
  }
  // A run of sixteen zeros is always the only symbol: its code leaves no room for another one.
  found->used += length;
  found->advance += run == 15 ? 16 : 0;
  found->ended = run < 15;
  return run < 15;
}

constexpr void Fill_Table(StripTables* tables, int32_t table, const ShortCodes& first, const ShortCodes& ac, bool isDc) {
  for (int32_t index = 0; index < Entries; ++index) {
    Found found;
    bool more = Take_Symbol(&found, index, first, isDc);
    while (more && !found.ended) more = Take_Symbol(&found, index, ac, false);
    if (found.used == 0) found.advance = StripPastEnd;
    found.symbols.progress = static_cast<uint16_t>(found.sizes << StripSizeShift | found.advance);
    tables->steps[table * Entries + index] = static_cast<uint8_t>(found.used | (found.ended ? StepEnd : 0));
    tables->symbols[table * Entries + index] = found.symbols;
  }
}

/** The entry for 16 bits in a table of single symbols: symbol, and length of code and value. Bits that are no code count as a
 *  symbol 0 of 8 bits. */
constexpr uint16_t Code_At(const HuffCode& huffCode, int32_t bits) {
  int32_t code = 0;
  size_t next = 0;
  for (int32_t length = 1; length <= 16; ++length, code <<= 1) {
    const int32_t count = huffCode.bits[length - 1], place = (bits >> (16 - length)) - code;
    if (place < count) {
      const uint8_t symbol = huffCode.values[next + static_cast<size_t>(place)];
      return static_cast<uint16_t>((length + symbol % 16) << 8 | symbol);
    }
    code += count;
    next += static_cast<size_t>(count);
  }
  return 8 << 8;
}

constexpr void Fill_Codes(StripTables* tables, int32_t table, const HuffCode& huffCode) {
  uint16_t* const codes = tables->codes + table * StripCodeEntries;
  for (int32_t i = 0; i < Entries; ++i) codes[i] = Code_At(huffCode, i << (16 - StripLookupBits));
  for (int32_t i = 0; i < 256; ++i) codes[Entries + i] = Code_At(huffCode, 0xFF00 | i);
}

constexpr void Fill_Sequence(StripTables* tables, const StripTables* at) {
  constexpr uint16_t offsets[6] = {0, 8, 128, 136, 256, 264};
  for (int32_t b = 0; b < 6 * StripMacroblocks; ++b) {
    const int32_t dc = b % 6 < 4 ? 0 : 2;
    tables->sequence[2 * b] = at->steps + dc * Entries;
    tables->sequence[2 * b + 1] = at->steps + (dc + 1) * Entries;
    tables->offsets[b] = static_cast<uint16_t>(b / 6 * StripMacroblockSize + offsets[b % 6]);
  }
  tables->sequence[2 * (6 * StripMacroblocks)] = at->steps + 4 * Entries;
  tables->sequence[2 * (6 * StripMacroblocks) + 1] = at->steps + 4 * Entries;
}

constexpr StripTables Make_Tables(const StripTables* at) {
  StripTables tables{};
  const ShortCodes acLuma = Short_Codes(acLumaCode), acChroma = Short_Codes(acChromaCode);
  Fill_Table(&tables, 0, Short_Codes(dcLumaCode), acLuma, true);
  Fill_Table(&tables, 1, acLuma, acLuma, false);
  Fill_Table(&tables, 2, Short_Codes(dcChromaCode), acChroma, true);
  Fill_Table(&tables, 3, acChroma, acChroma, false);
  for (int32_t i = 4 * Entries; i < 5 * Entries; ++i) tables.symbols[i].progress = StripPastEnd;
  for (int32_t k = 0; k < 96; ++k) {
    const int32_t natural = zigzagOrder[k < 63 ? k : 63];
    tables.places[k] = static_cast<uint8_t>(natural / 8 * 16 + natural % 8);
  }
  Fill_Codes(&tables, 0, dcLumaCode);
  Fill_Codes(&tables, 1, acLumaCode);
  Fill_Codes(&tables, 2, dcChromaCode);
  Fill_Codes(&tables, 3, acChromaCode);
  Fill_Sequence(&tables, at);
  return tables;
}

}  // namespace

constinit const StripTables stripTables = Make_Tables(&stripTables);
