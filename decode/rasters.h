/* A decoder's raster, in the depth of its screen, and its planes. */
#pragma once

#include "decode/decoder.h"

/** Bits per pixel of a decoder's raster: 24 for a headless one, otherwise those of the screen, or 24 if the screen's depth is not
 *  8, 16 or 32. */
int32_t Raster_Depth(bool headless);

/** Replaces the codec's raster and planes by new ones of the decoder's size, the planes dark. False, with nothing changed,
 *  without memory. */
bool Build_Rasters(JdecDecoder* decoder);

/** Replaces the raster of a decoder without a display by a new one of that depth. The planes stay. False, with nothing changed,
 *  without memory. */
bool Replace_Raster(JdecDecoder* decoder, int32_t bitsPerPixel);

/** Frees the codec's raster and planes and sets both to null. */
void Free_Rasters(JdecDecoder* decoder);
