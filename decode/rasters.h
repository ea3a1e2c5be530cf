/* A decoder's raster, in the depth of its screen, and its planes. */
#pragma once

#include "decode/decoder.h"

/** Bits per pixel that the decoder's raster must have: 24 when headless, otherwise those of the screen; 24 too when the screen
 *  has none of the known depths. */
int32_t Raster_Depth(int32_t headless);

/** Makes raster and planes of the decoder's size, the planes dark, and puts them into its codec in place of the old ones, which
 *  are freed. Gives 1; or 0 with nothing changed without memory. */
int32_t Build_Rasters(JdecDecoder* decoder);

/** Frees the codec's raster and planes and sets both to null. */
void Free_Rasters(JdecDecoder* decoder);
