/* The motion-area layer: its cells, and the template that is copied into a new surface. The calls that change the layer are
 * exports (velarto.h). */
#pragma once

#include "display/context.h"

/** Size of a cell of the grid in pixels, and its left and top margin, which is the grid's line. */
struct CellGeometry {
  int32_t width, height, left, top;
};

/** The cells of pictures of that size. */
CellGeometry Cell_Geometry(int32_t width, int32_t height);

/** How many pixels of the layer a unit of the moving rectangle's coordinates is, across and down: 2 and 2 in pictures of 640x480,
 * 2 and 1 in others 640 wide, otherwise 1 and 1. */
struct RectangleScale {
  int32_t across, down;
};
RectangleScale Rectangle_Scale(int32_t width, int32_t height);

/** Rows that JDEC_set_MD_area_2 counts for each row of the picture: 2 in pictures of 640x240, otherwise 1. */
int32_t Area_Rows(int32_t width, int32_t height);

/** Copies the template to a new surface, the grid to the layer and the template strips below it, and makes black the surface's
 *  source key. For the three picture sizes that the template is made for (320x240, 640x240, 640x480) it is stretched over the
 *  surface. For other sizes the grid is at the layer's upper left, in the size of the cells, and the template strips are repeated
 *  side by side. Gives E_FAIL for a null surface or without the bitmap, otherwise the code of the copy. */
HRESULT Load_Template_Bitmap(IDirectDrawSurface* surface, int32_t width, int32_t height, int32_t displayBits, int32_t keyRow);

/** Stretches a part of a bitmap over all rows of the surface except the last keyRow ones. A source size of 0 means the bitmap's
 *  own. Gives E_FAIL for a null argument, otherwise the code of the surface's device context. */
HRESULT Copy_Bitmap_To_Surface(IDirectDrawSurface* surface, HBITMAP bitmap, int32_t sourceX, int32_t sourceY, int32_t sourceWidth,
                               int32_t sourceHeight, int32_t keyRow);
