/* From 4:2:0 planes to a packed raster of the same size. The whole 2x2 blocks of the picture are written; the last column of an
 * odd width and the last row of an odd height stay as they were. */
#pragma once

#include "pixel/pictures.h"

/** Codes of a raster's pixels, in JdecDisplay::pixelFormat and given to callers. */
enum PixelFormat : int32_t { PixelPalette8 = 0, PixelRgb555 = 1, PixelRgb565 = 2, PixelRgb24 = 3, PixelRgb32 = 4 };

void YCC_To_RGB24(const JdecPlanes* planes, JdecRaster* raster);
void YCC_To_RGB32(const JdecPlanes* planes, JdecRaster* raster);
void YCC_To_RGB565(const JdecPlanes* planes, JdecRaster* raster);
void YCC_To_RGB555(const JdecPlanes* planes, JdecRaster* raster);

/** Converts by format; a raster of another depth than the format's stays as it was. ditherMode: a DitherMode, for palette
 * indices. */
void Convert_Planes(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode);

/** What comes next for a raster: it is read at once, to be shown, or it is left for later, and may go past the cache. */
enum RasterUse : int32_t { RasterRead = 0, RasterLeft = 1 };

/** Convert_Planes on some of the rows: those of `count` pairs of rows from pair `first` on, pair i being rows 2 * i and 2 * i
 * + 1. What is below the picture is left out. So a picture can be converted piece by piece, while its samples are still at hand.
 */
void Convert_Plane_Rows(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode, RasterUse use,
                        int32_t first, int32_t count);
