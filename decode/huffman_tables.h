/* The Huffman codes as lookup tables. */
#pragma once

#include "decode/huffman_codes.h"
#include "kernels/kernels.h"

/** The tables for decoding. Set by Huff_Init_Decode_Tables, read-only afterwards. */
extern HuffTables huffTables;

/** Points huffTables to the tables, which are made at compile time. */
void Huff_Init_Decode_Tables();
/** Sets the pointers in huffTables to null. */
void Huff_Free_Decode_Tables();
