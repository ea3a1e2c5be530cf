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

/** Makes *decoder a headless decoder of that size, which must be an allowed one. Does nothing if it is one already. False, with
 *  *error, without memory. */
bool Decoder_Fit(DecoderHolder* decoder, int32_t width, int32_t height, std::string* error);

/** Decodes the frame, counts its bytes for the bit rate, and shows it if the decoder has a window. False, without effect, if it
 * can't be decoded. */
bool Picture_Decode(JdecDecoder* decoder, const WalkedFrame& frame);

/** Writes the decoder's picture as a BMP file of 24 bits, completely or not at all. False with *error. */
bool Picture_Save(JdecDecoder* decoder, const std::string& path, std::string* error);

/** Writes the frame as a JPEG file, completely or not at all: its own data where that is a valid JPEG image, otherwise the
 * picture that the headless decoder makes of it, compressed again. False with *error. */
bool Picture_Save_Jpeg(JdecDecoder* decoder, const WalkedFrame& frame, const std::string& path, std::string* error);

/** Can a frame have a picture of that size? False, with *error, if not. */
bool Picture_Size_Check(int64_t width, int64_t height, std::string* error);

/** Gives the picture a size, which must have been checked, and black pixels. */
void Picture_Allot(Picture* picture, int64_t width, int64_t height);

/** Row y of the picture, counted from the bottom. */
uint8_t* Picture_Row(Picture* picture, int64_t y);

/** The upper left part of the picture, of whole macroblocks: what a frame codes of it. */
Picture Picture_Coded_Part(Picture picture);
