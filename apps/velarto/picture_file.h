/* Picture files: BMP of 8, 24 and 32 bits, PPM (P6, and P5 for grey), and JPEG; recognised by their content. */
#pragma once

#include "apps/velarto/picture.h"

/** Reads a picture from a file, or from standard input with the name "-". False, with one line in *error, when it can't be read
 *  or is too large for a frame. The size is checked before memory is allocated for it. */
bool Picture_Read(const std::string& name, Picture* picture, std::string* error);

/** The same from bytes in memory; *error doesn't name the file. */
bool Picture_Parse(std::span<const uint8_t> bytes, Picture* picture, std::string* error);
