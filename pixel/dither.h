/* From 4:2:0 planes to palette indices, for screens of 8 bits: each component is quantised by itself with an ordered 4x4 dither.
 *
 * An index holds the luma level, 1 to 14, in its upper four bits, the Cb level, 0 to 3, in the next two and the Cr level in the
 * last; so indices are 16 to 239. The palette (display/palette) gives them their colours. */
#pragma once

#include "pixel/pictures.h"

/** Values of `mode`: which of the two matrices. */
enum DitherMode : int32_t { DitherNormal = 1, DitherShrink = 2 };

/** Sets the quantisers' pointers; part of Init_YCC_RGB_Table. */
void Init_Dither_Tables();

/** Converts the whole picture into a raster of 8 bits and its size. Any mode but DitherShrink is DitherNormal. The last column of
 * an odd width and the last row of an odd height take the chroma beside them; a picture one pixel wide or high has none and stays
 * as it was. */
void YCC_To_Palette8(const JdecPlanes* planes, JdecRaster* raster, int32_t mode);

/** The same for `count` pairs of rows from pair `first` on; the last row of an odd height is a pair by itself. */
void YCC_To_Palette8_Rows(const JdecPlanes* planes, JdecRaster* raster, int32_t mode, int32_t first, int32_t count);
