/* From 4:2:0 planes to palette indices, for screens of 8 bits. Each component is quantised to a few steps with an ordered 4x4
 * dither.
 *
 * An index holds the luma step, 1 to 14, in its upper four bits, the Cb step, 0 to 3, in the next two and the Cr step, 0 to 3, in
 * the lowest two. So indices are 16 to 239. The palette (display/palette) has their colours. */
#pragma once

#include "pixel/pictures.h"

/** Values of `mode`: which of the two dither matrices is used. */
enum DitherMode : int32_t { DitherNormal = 1, DitherShrink = 2 };

/** Sets the pointers to the dither's tables. Called by Init_YCC_RGB_Table. */
void Init_Dither_Tables();

/** Converts the whole picture into a raster of 8 bits and the same size. Any mode but DitherShrink counts as DitherNormal. The
 *  last column of an odd width and the last row of an odd height use the chroma of their neighbours. A picture one pixel wide or
 *  high has no chroma: its raster stays as it was. */
void YCC_To_Palette8(const JdecPlanes* planes, JdecRaster* raster, int32_t mode);

/** The same for `count` pairs of rows from pair `first` on. The last row of an odd height counts as a pair. */
void YCC_To_Palette8_Rows(const JdecPlanes* planes, JdecRaster* raster, int32_t mode, int32_t first, int32_t count);
