/* Straight lines in the motion-area layer of a locked surface, for each screen depth. */
#pragma once

#include "display/context.h"

#include <atomic>

/** Draws a line from the smaller of `from` and `to` up to the larger, which is not drawn. A horizontal line goes over columns in
 *  row `at`, a vertical one over rows in column `at`. layer: the layer's first byte. surface: its pitch is used. color: a pixel
 *  of the surface, of which the low bytes are used. Nothing is clipped: the line must lie in the layer. Gives 0.
 *
 *  While mdRectMode is 1, pixels of mdColorFirst are not overwritten. A line with no length sets one pixel, but a horizontal one
 *  in 8 or 16 bits sets none while mdRectMode is 0. */
using LinePrimitive = int32_t (*)(const DDSURFACEDESC* surface, uint8_t* layer, int32_t from, int32_t to, int32_t at,
                                  uint32_t color);

extern const LinePrimitive horizontalLine8, horizontalLine16, horizontalLine24, horizontalLine32;
extern const LinePrimitive verticalLine8, verticalLine16, verticalLine24, verticalLine32;

/* The functions for the screen's depth. One pair for the process, set when a display of the DirectDraw form is made. */
extern std::atomic<LinePrimitive> horizontalLine;
extern std::atomic<LinePrimitive> verticalLine;

/** Sets the pair for a depth of 8, 16, 24 or 32 bits. */
void Select_Lines(int32_t displayBits);
