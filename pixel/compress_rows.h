/* The still encoder's fast road: a row of macroblocks at a time from the caller's pixels to bytes, while all is at hand. */
#pragma once

#include "decode/codec.h"

/** Brings the caller's picture (as of JDEC_Compress_RGB888) into the codec's planes and encodes it as Huff_Encode_Frame does.
 * Needs the kernels of this road, and no memory.
 *
 *  The bytes and the planes are those of the plain road. Of the coefficient planes it fills only what no decoding clears: the
 * luma row that lies below the last whole macroblocks. */
void Compress_Rows(JdecCodec* codec, const uint8_t* pixels, bool doubleRows);
