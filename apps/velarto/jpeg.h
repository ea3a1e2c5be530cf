/* JPEG images of any kind, by libjpeg where the home has it; one file for each case. */
#pragma once

#include "apps/velarto/picture.h"

/** Reads an image of any size that a frame can carry. False, with *error, for a damaged or cut one, one of a size or kind that
 *  can't be had, and where there is no libjpeg. */
bool Jpeg_Read(std::span<const uint8_t> bytes, Picture* picture, std::string* error);

/** Does a reader of JPEG images find nothing to complain about in this fixed-layout image? Where there is no libjpeg to say so:
 *  does its size come in whole macroblocks, so that a frame brings data for all of it? */
bool Jpeg_Sound(std::span<const uint8_t> bytes);

/** Compresses a picture at libjpeg's quality 0 to 100. False, with *error, without memory or libjpeg. */
bool Jpeg_Write(const Picture& picture, int32_t quality, std::vector<uint8_t>* bytes, std::string* error);
