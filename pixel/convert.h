/* From 4:2:0 planes to a packed raster of the same size. Only whole 2x2 blocks of pixels are written: the last column of an odd
 * width and the last row of an odd height stay as they were. Palette indices (pixel/dither.h) are written there too. */
#pragma once

#include "pixel/pictures.h"

/** Formats of a raster's pixels, in JdecDisplay::pixelFormat and JDEC_get_decompressed_bitmap_ex. */
enum PixelFormat : int32_t { PixelPalette8 = 0, PixelRgb555 = 1, PixelRgb565 = 2, PixelRgb24 = 3, PixelRgb32 = 4 };

void YCC_To_RGB24(const JdecPlanes* planes, JdecRaster* raster);
void YCC_To_RGB32(const JdecPlanes* planes, JdecRaster* raster);
void YCC_To_RGB565(const JdecPlanes* planes, JdecRaster* raster);
void YCC_To_RGB555(const JdecPlanes* planes, JdecRaster* raster);

/** Converts to a PixelFormat. A raster of another depth than the format's stays as it was. ditherMode: a DitherMode, for palette
 *  indices. */
void Convert_Planes(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode);

/** Whether a raster is read at once, to be shown, or later, so that a large one may be written past the caches. */
enum RasterUse : int32_t { RasterRead = 0, RasterLeft = 1 };

/** Convert_Planes for `count` pairs of rows from pair `first` on; pair i is rows 2 * i and 2 * i + 1. Rows below the picture are
 *  skipped. With it a picture is converted in parts, while their samples are in the cache. */
void Convert_Plane_Rows(int32_t pixelFormat, const JdecPlanes* planes, JdecRaster* raster, int32_t ditherMode, RasterUse use,
                        int32_t first, int32_t count);
