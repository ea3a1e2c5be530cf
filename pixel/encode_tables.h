/* The four Huffman codes of all frames as the encoder needs them. */
#pragma once

#include "kernels/kernels.h"

/** Of luma and of chroma. */
extern const HuffEncodeTables huffEncodeTables[2];
