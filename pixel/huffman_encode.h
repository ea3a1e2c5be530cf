/* From quantised coefficients to entropy-coded data: the inverse of decode/huffman_decode. */
#pragma once

#include "decode/codec.h"

/** Encodes the whole macroblocks of a picture of that size after the frame's `length` bytes, and updates that length. Bytes that
 *  don't fit the store are only counted: a length above FrameStoreSize means that the frame is incomplete. */
void Huff_Encode_Frame(JdecCodec* codec, int32_t* const* coefY, int32_t* const* coefCb, int32_t* const* coefCr, int32_t width,
                       int32_t height, JdecFrameBuffer* frame);
