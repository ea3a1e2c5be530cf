/* Entropy decoding of a whole frame. */
#pragma once

#include "decode/codec.h"

/** Decodes the macroblocks of a frame of that size into the coefficient planes. Bytes after the frame's end read as 0, so that
 *  the planes are always complete. Columns beyond the last macroblock are zeroed; rows beyond it stay as they were. The codec's
 *  watermark holds the frame's hidden text afterwards. */
void Huff_Decode_Frame(JdecCodec* codec, int32_t** coefY, int32_t** coefCb, int32_t** coefCr, int32_t width, int32_t height,
                       const JdecFrameBuffer* frame);
