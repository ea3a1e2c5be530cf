/* The four Huffman codes of all frames (JPEG, Annex K) as lookup tables, and the tables of scan order and sign extension. */
#pragma once

#include "kernels/kernels.h"

#include <cstdint>
#include <span>

/** A code as the standard states it: how many codes of each length 1 to 16, and the symbols in order of their codes. */
struct HuffCode {
  uint8_t bits[16];
  std::span<const uint8_t> values;
};

extern const HuffCode dcLumaCode, acLumaCode, dcChromaCode, acChromaCode;

/** Scan position to natural position; the 16 entries behind the 64 catch runs that pass a block's end. */
extern const int32_t zigzagOrder[80];

/** The tables that decoding reads. Set by Huff_Init_Decode_Tables, read-only afterwards. */
extern HuffTables huffTables;

/** Points huffTables to the tables, which are made at compile time. */
void Huff_Init_Decode_Tables();
void Huff_Free_Decode_Tables();
