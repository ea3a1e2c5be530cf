#include "pixel/encode_tables.h"

#include "decode/huffman_codes.h"

#include <array>
#include <bit>

namespace {

constexpr JdecHuffEncode Huff_Build_Encode_Table(const HuffCode& huffCode) {
  JdecHuffEncode table{};
  uint32_t code = 0;
  size_t next = 0;
  for (int8_t length = 1; length <= 16; ++length, code <<= 1) {
    for (uint32_t n = huffCode.bits[length - 1]; n > 0; --n) {
      const uint8_t symbol = huffCode.values[next++];
      table.code[symbol] = code++;
      table.size[symbol] = length;
    }
  }
  return table;
}

/** A code followed by the low bits of its value, and in the low byte the number of these bits. */
constexpr uint32_t Entry(const JdecHuffEncode& code, int32_t run, int32_t value) {
  const int32_t size = std::bit_width(static_cast<uint32_t>(value < 0 ? -value : value)), symbol = run * 16 + size;
  const uint32_t low = static_cast<uint32_t>(value < 0 ? value - 1 : value) & ((1u << size) - 1);
  return (code.code[symbol] << size | low) << 8 | static_cast<uint32_t>(code.size[symbol] + size);
}

struct EntryStore {
  uint32_t dc[2 * HuffDcReach], ac[18][256];

  constexpr EntryStore(const JdecHuffEncode& dcCode, const JdecHuffEncode& acCode) : dc{}, ac{} {
    for (int32_t d = 1 - HuffDcReach; d < HuffDcReach; ++d) dc[d + HuffDcReach] = Entry(dcCode, 0, d);
    // A byte of 127 or -128 can also mean a larger coefficient, and a distance of 17 a longer one.
    for (int32_t distance = 1; distance <= 17; ++distance) {
      for (int32_t value = -128; value < 128; ++value) {
        const bool special = distance == 17 || value == -128 || value == 127;
        if (value != 0) ac[distance][static_cast<uint8_t>(value)] = special ? HuffAcSpecial : Entry(acCode, distance - 1, value);
      }
    }
    ac[0][0] = Entry(acCode, 0, 0);
  }
};

using ScanMasks = std::array<uint64_t[256], 8>;

/** By row and by the columns that it uses, one bit each: the scan positions of its coefficients, one bit each. */
constexpr ScanMasks Build_Scan_Masks() {
  ScanMasks masks{};
  for (int32_t k = 0; k < 64; ++k) {
    const int32_t row = zigzagOrder[k] / 8, column = zigzagOrder[k] % 8;
    for (uint32_t used = 0; used < 256; ++used) {
      masks[static_cast<size_t>(row)][used] |= static_cast<uint64_t>(used >> column & 1) << k;
    }
  }
  return masks;
}

constexpr JdecHuffEncode lumaDc = Huff_Build_Encode_Table(dcLumaCode), lumaAc = Huff_Build_Encode_Table(acLumaCode),
                         chromaDc = Huff_Build_Encode_Table(dcChromaCode), chromaAc = Huff_Build_Encode_Table(acChromaCode);
constexpr auto acRows = [] {
  std::array<uint16_t, 65> rows{};
  for (size_t distance = 0; distance < rows.size(); ++distance) {
    rows[distance] = static_cast<uint16_t>((distance < 17 ? distance : 17) * 256);
  }
  return rows;
}();
constexpr EntryStore lumaEntries(lumaDc, lumaAc), chromaEntries(chromaDc, chromaAc);
constexpr ScanMasks scanMasks = Build_Scan_Masks();

constexpr HuffEncodeTables encodeTables[2] = {
    {lumaEntries.dc, acRows.data(), lumaEntries.ac[0], &lumaDc, &lumaAc, scanMasks.data()},
    {chromaEntries.dc, acRows.data(), chromaEntries.ac[0], &chromaDc, &chromaAc, scanMasks.data()}};

}  // namespace

const HuffEncodeTables* huffEncodeTables = nullptr;

void Huff_Init_Encode_Tables() { huffEncodeTables = encodeTables; }

void Huff_Free_Encode_Tables() { huffEncodeTables = nullptr; }
