/* Quantised coefficients to entropy-coded data: the inverse of decode/huffman_decode. */
#pragma once

#include "decode/codec.h"

/** Encodes the whole macroblocks of a picture of that size behind the `length` bytes that the frame holds, and sets its length.
 * Where the store is full the bytes are counted only: a length above FrameStoreSize says that the frame is not whole. */
void Huff_Encode_Frame(JdecCodec* codec, int32_t* const* coefY, int32_t* const* coefCb, int32_t* const* coefCr, int32_t width,
                       int32_t height, JdecFrameBuffer* frame);
