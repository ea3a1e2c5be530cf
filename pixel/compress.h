/* Pictures to frames, and the frame at hand to a JPEG file. */
#pragma once

#include "decode/decoder.h"

#include <cstdio>

/** JDEC_Compress_RGB888 (velarto.h) on a codec. */
int32_t Codec_Compress_RGB888(JdecCodec* codec, int32_t quality, const uint8_t* pixels, uint32_t ignored, uint8_t* buffer,
                              int32_t capacity, int32_t withMarkers, int32_t doubleRows);

/** JDEC_Write_JFIF_File (velarto.h) on a codec. */
int32_t Codec_Write_JFIF_File(JdecCodec* codec, FILE* stream);
