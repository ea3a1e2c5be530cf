/* Rows of pixels to colours, 0xRRGGBB in words, and back. For the files of the layer alone. */
#pragma once

#include "platform/portable/paint/pixels.h"

void Read_Row(const ColorFormat& format, const uint8_t* row, int32_t count, uint32_t* colors);
void Write_Row(const ColorFormat& format, const uint32_t* colors, int32_t count, uint8_t* row);

/** For each of 256 palette indices that of the nearest colour in another palette. */
void Map_Indices(const ColorFormat& from, const ColorFormat& to, uint8_t* map);
