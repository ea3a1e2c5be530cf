/* JPEG images of any kind, by libjpeg where the platform has it; one file for each case. */
#pragma once

#include "apps/velarto/picture.h"

/** Reads an image of any size that a frame can carry. False, with *error, for a damaged or incomplete image, one of an
 *  unsupported size or kind, and without libjpeg. */
bool Jpeg_Read(std::span<const uint8_t> bytes, Picture* picture, std::string* error);

/** Does libjpeg read this fixed-layout image without a warning? Without libjpeg: is its size a multiple of whole macroblocks, so
 *  that the frame has data for all of it? */
bool Jpeg_Sound(std::span<const uint8_t> bytes);

/** Compresses a picture at libjpeg's quality 0 to 100. False, with *error, without memory or libjpeg. */
bool Jpeg_Write(const Picture& picture, int32_t quality, std::vector<uint8_t>* bytes, std::string* error);
