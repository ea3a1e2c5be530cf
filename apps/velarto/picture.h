/* Pictures in memory: into a decoder and out of it, and into files. */
#pragma once

#include "apps/velarto/frame_walk.h"
#include "velarto.h"

#include <memory>
#include <string>

/** A picture of the still encoder's kind. */
struct Picture {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;  ///< B, G, R, rows of 3 * width bytes, bottom row first.
};

struct DecoderRelease {
  void operator()(JdecDecoder* decoder) const { JDEC_Free(decoder); }
};
using DecoderHolder = std::unique_ptr<JdecDecoder, DecoderRelease>;

/** Makes *decoder a headless decoder of that size, which must be an allowed one, unless it is one. False, with *error, without
 *  memory. */
bool Decoder_Fit(DecoderHolder* decoder, int32_t width, int32_t height, std::string* error);

/** Decodes the frame, and shows it if the decoder has a window. Gives false, and does nothing, for one that can't be decoded. */
bool Picture_Push(JdecDecoder* decoder, const WalkedFrame& frame);

/** Writes the decoder's picture as a BMP file of 24 bits, whole or not at all. False with *error. */
bool Picture_Save(JdecDecoder* decoder, const std::string& path, std::string* error);

/** Writes the frame as a JPEG file, whole or not at all: its own data where that makes a JPEG image without a fault, else the
 *  picture that the headless decoder makes of it, compressed anew. False with *error. */
bool Picture_Save_Jpeg(JdecDecoder* decoder, const WalkedFrame& frame, const std::string& path, std::string* error);

/** Can a frame carry a picture of that size? False, with *error, if not. */
bool Picture_Size_Check(int64_t width, int64_t height, std::string* error);

/** Gives the picture a size that was checked, and black pixels. */
void Picture_Allot(Picture* picture, int64_t width, int64_t height);

/** Row y of the picture, counted from the bottom. */
uint8_t* Picture_Row(Picture* picture, int64_t y);

/** The picture's upper left part that fills whole macroblocks: all of it that a frame carries. */
Picture Picture_Coded_Part(Picture picture);
