/* Entropy decoding of a whole frame, the first step of the plain pipeline. */
#pragma once

#include "decode/codec.h"

/** Decodes the macroblocks of a frame of that size into the coefficient planes. Bytes after the frame's end read as 0, so that
 *  every macroblock is written. Columns of blocks right of the last macroblock are zeroed, rows of blocks below it stay as they
 *  were. The codec's watermark then holds the frame's hidden text. */
void Huff_Decode_Frame(JdecCodec* codec, int32_t** coefY, int32_t** coefCb, int32_t** coefCr, int32_t width, int32_t height,
                       const JdecFrameBuffer* frame);
