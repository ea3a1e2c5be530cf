/* The tables of the process: one set for all decoders, read-only from Init_Global_Tables to Free_Global_Tables. */
#pragma once

#include <cstdint>

/** Entry i is 2^i - 1. */
extern const uint32_t* bitMasks;

/** Sets the pointers to all tables, which are made at compile time, and chooses the kernels. */
void Init_Global_Tables();
/** Sets the pointers to the colour and Huffman tables to null. */
void Free_Global_Tables();
/** Sets bitMasks. */
void Init_Bit_Masks();
