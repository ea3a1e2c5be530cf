/* The four Huffman codes in the encoder's form. */
#pragma once

#include "kernels/kernels.h"

/** Two records, the first for luma, the second for chroma. Null until Huff_Init_Encode_Tables. */
extern const HuffEncodeTables* huffEncodeTables;

/** Points huffEncodeTables to the tables, which are made at compile time. */
void Huff_Init_Encode_Tables();
/** Sets huffEncodeTables to null. */
void Huff_Free_Encode_Tables();
