/* The still encoder: from a picture to a frame, and from the frame in the store to a JPEG file. */
#pragma once

#include "decode/codec.h"

#include <cstdio>

/** JDEC_Compress_RGB888 (velarto.h) on a codec. */
int32_t Codec_Compress_RGB888(JdecCodec* codec, int32_t quality, const uint8_t* pixels, uint32_t ignored, uint8_t* buffer,
                              int32_t capacity, int32_t withMarkers, int32_t doubleRows);

/** The first half of it, in the plain pipeline: transforms a picture into the codec's coefficient planes. quality, pixels and
 *  doubleRows as in JDEC_Compress_RGB888. False without memory. */
bool Codec_Transform_RGB888(JdecCodec* codec, int32_t quality, const uint8_t* pixels, bool doubleRows);

/** The second half: encodes the codec's coefficient planes into a frame in its store, a JFIF one with markers, otherwise a
 *  compact one. Gives the frame's length; 0, with an empty store, if the frame doesn't fit it. */
int32_t Codec_Encode_Store(JdecCodec* codec, bool withMarkers);

/** JDEC_Write_JFIF_File (velarto.h) on a codec. */
int32_t Codec_Write_JFIF_File(JdecCodec* codec, FILE* stream);
