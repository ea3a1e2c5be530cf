/* The four Huffman codes of all frames as the encoder needs them. */
#pragma once

#include "kernels/kernels.h"

/** Of luma and of chroma. Null until Huff_Init_Encode_Tables; never change afterwards. */
extern const HuffEncodeTables* huffEncodeTables;

/** Points huffEncodeTables to the tables, which are made at compile time. */
void Huff_Init_Encode_Tables();
void Huff_Free_Encode_Tables();
