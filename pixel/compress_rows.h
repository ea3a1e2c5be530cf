/* The still encoder's row pipeline: one macroblock row at a time from the caller's pixels to bytes, while it is in the cache. */
#pragma once

#include "decode/codec.h"

/** Converts a picture, given as in JDEC_Compress_RGB888, into the codec's planes, and encodes it after the frame's `length` bytes
 *  as Huff_Encode_Frame does. Needs the kernel encodeRow; allocates nothing.
 *
 *  Bytes and planes are the same as in the plain pipeline. Of the coefficient planes only the row of luma blocks below the last
 *  macroblock row is written, since decoding doesn't clear it. */
void Compress_Rows(JdecCodec* codec, const uint8_t* pixels, bool doubleRows);
