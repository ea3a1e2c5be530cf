/* The motion-detection overlay: what the template brings into a fresh layer. The calls that change the layer are exports
 * (velarto.h). */
#pragma once

#include "display/context.h"

/** Size of a cell of the grid, and its margins, which are the grid's lines. */
struct CellGeometry {
  int32_t width, height, left, top;
};

/** The cells of pictures of that size. */
CellGeometry Cell_Geometry(int32_t width, int32_t height);

/** Lays the template bitmap out on a new surface: grid, tile strip, checker rows and sample row, and makes black the surface's
 * source key. For the three picture sizes that the template is made for (320x240, 640x240, 640x480) it is stretched over the
 * surface. For any other the grid keeps the measure of the cells, at the layer's upper left, and the strips are laid side by
 * side. Gives E_FAIL for a null surface or without the bitmap, otherwise the code of the copy. */
HRESULT Load_Template_Bitmap(IDirectDrawSurface* surface, int32_t width, int32_t height, int32_t displayBits, int32_t keyRow);

/** Stretches a part of a bitmap (a size of 0: the bitmap's own) over the surface's rows but the last keyRow ones. E_FAIL for a
 * null argument; otherwise the code of the surface's device context. */
HRESULT Copy_Bitmap_To_Surface(IDirectDrawSurface* surface, HBITMAP bitmap, int32_t sourceX, int32_t sourceY, int32_t sourceWidth,
                               int32_t sourceHeight, int32_t keyRow);
