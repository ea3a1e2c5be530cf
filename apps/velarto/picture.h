/* Frames into a decoder, and its picture into a BMP file. */
#pragma once

#include "apps/velarto/frame_walk.h"
#include "velarto.h"

#include <string>

/** Decodes the frame, and shows it if the decoder has a window. Gives false, and does nothing, for one that can't be decoded. */
bool Picture_Push(JdecDecoder* decoder, const WalkedFrame& frame);

/** Writes the decoder's picture as a BMP file of 24 bits, whole or not at all. False with *error. */
bool Picture_Save(JdecDecoder* decoder, const std::string& path, std::string* error);
