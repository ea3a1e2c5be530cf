/* The four Huffman codes of all frames as the encoder needs them. */
#pragma once

#include "kernels/kernels.h"

/** Of luma and of chroma. Made when the library is loaded, read-only. */
extern const HuffEncodeTables huffEncodeTables[2];
