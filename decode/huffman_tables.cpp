#include "decode/huffman_tables.h"

#include <array>

namespace {

/** Second-stage tables of a code. Codes of more than 8 bits start with at least five ones in all four: 8 slots are enough. */
constexpr int32_t MaxSlots = 8;

struct LookupStore {
  uint8_t lengths[256];
  uint8_t values[256];
  uint8_t slotCount = 1;
  uint8_t secondLengths[MaxSlots + 1][256];
  uint8_t secondValues[MaxSlots + 1][256];
};

constexpr void Put_Code(LookupStore& store, uint32_t code, uint32_t length, uint8_t symbol) {
  if (length <= 8) {
    for (uint32_t i = 0; i < 1u << (8 - length); ++i) {
      store.lengths[(code << (8 - length)) + i] = static_cast<uint8_t>(length);
      store.values[(code << (8 - length)) + i] = symbol;
    }
    return;
  }
  uint8_t& slot = store.values[code >> (length - 8)];
  if (slot == 0) slot = store.slotCount++;
  const uint32_t first = code << (16 - length) & 0xFF;
  for (uint32_t i = 0; i < 1u << (16 - length); ++i) {
    store.secondLengths[slot][first + i] = static_cast<uint8_t>(length);
    store.secondValues[slot][first + i] = symbol;
  }
}

/** Codes of one length are consecutive; for each further bit of length the next code doubles. */
constexpr LookupStore Huff_Build_Lookup(const HuffCode& huffCode) {
  LookupStore store{};
  uint32_t code = 0;
  size_t next = 0;
  for (uint32_t length = 1; length <= 16; ++length, code <<= 1) {
    for (uint32_t n = huffCode.bits[length - 1]; n > 0; --n) Put_Code(store, code++, length, huffCode.values[next++]);
  }
  return store;
}

constexpr LookupStore dcLumaStore = Huff_Build_Lookup(dcLumaCode), acLumaStore = Huff_Build_Lookup(acLumaCode),
                      dcChromaStore = Huff_Build_Lookup(dcChromaCode), acChromaStore = Huff_Build_Lookup(acChromaCode);

/** The lookup record of a store, and the pointer arrays that it needs. */
struct Lookup {
  std::array<const uint8_t*, MaxSlots + 1> lengths{}, values{};
  JdecHuffLookup record{};

  explicit constexpr Lookup(const LookupStore& store) {
    for (int32_t slot = 1; slot < store.slotCount; ++slot) {
      lengths[static_cast<size_t>(slot)] = store.secondLengths[slot];
      values[static_cast<size_t>(slot)] = store.secondValues[slot];
    }
    record.slotCount = store.slotCount;
    for (int32_t i = 0; i < 256; ++i) {
      record.lengths[i] = store.lengths[i];
      record.values[i] = store.values[i];
    }
    if (store.slotCount > 1) {
      record.secondLengths = lengths.data();
      record.secondValues = values.data();
    }
  }
  Lookup(const Lookup&) = delete;
  Lookup& operator=(const Lookup&) = delete;
};

constinit const Lookup dcLumaLookup(dcLumaStore), acLumaLookup(acLumaStore), dcChromaLookup(dcChromaStore),
    acChromaLookup(acChromaStore);

}  // namespace

HuffTables huffTables{};

void Huff_Init_Decode_Tables() {
  huffTables = {&dcLumaLookup.record, &acLumaLookup.record, &dcChromaLookup.record, &acChromaLookup.record, zigzagOrder};
}

void Huff_Free_Decode_Tables() { huffTables = {}; }
