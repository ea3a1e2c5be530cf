/* The tables of the row pipeline's entropy decoding, made at compile time from the four Huffman codes. */
#pragma once

#include "kernels/kernels.h"

extern const StripTables stripTables;
