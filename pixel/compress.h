/* Pictures to frames, and the frame at hand to a JPEG file. */
#pragma once

#include "decode/codec.h"

#include <cstdio>

/** JDEC_Compress_RGB888 (velarto.h) on a codec. */
int32_t Codec_Compress_RGB888(JdecCodec* codec, int32_t quality, const uint8_t* pixels, uint32_t ignored, uint8_t* buffer,
                              int32_t capacity, int32_t withMarkers, int32_t doubleRows);

/** The front half of that: the picture's coefficients, at the codec's planes. quality, pixels and doubleRows as there. 0 when
 * memory can't be had. */
int32_t Codec_Transform_RGB888(JdecCodec* codec, int32_t quality, const uint8_t* pixels, bool doubleRows);

/** The back half: the coefficients at the codec's planes as a frame in its store, JFIF with markers, else compact. Gives the
 *  frame's length; 0, with an empty store, when the frame passes it. */
int32_t Codec_Encode_Store(JdecCodec* codec, bool withMarkers);

/** JDEC_Write_JFIF_File (velarto.h) on a codec. */
int32_t Codec_Write_JFIF_File(JdecCodec* codec, FILE* stream);
