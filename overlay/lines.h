/* Straight lines in the overlay layer of a locked surface, once for each depth. */
#pragma once

#include "display/context.h"

#include <atomic>

/** Draws from `from` up to `to`, which may come in either order; the upper one is not drawn. A horizontal line runs over columns
 * in row `at`, a vertical one over rows in column `at`. `layer` is the layer's first byte; of the surface its pitch is taken, of
 * the colour, a pixel of the surface, the low bytes. Nothing is clipped: callers keep within the layer. Gives 0.
 *
 *  While mdRectMode is 1, pixels of mdColorFirst survive. A line with no length sets one pixel, but horizontal ones of 8 and 16
 * bits set none while mdRectMode is 0. */
using LinePrimitive = int32_t (*)(const DDSURFACEDESC* surface, uint8_t* layer, int32_t from, int32_t to, int32_t at,
                                  uint32_t color);

extern const LinePrimitive horizontalLine8, horizontalLine16, horizontalLine24, horizontalLine32;
extern const LinePrimitive verticalLine8, verticalLine16, verticalLine24, verticalLine32;

/* The pair for the screen's depth. One pair for the process, set by each display of the DirectDraw form. */
extern std::atomic<LinePrimitive> horizontalLine;
extern std::atomic<LinePrimitive> verticalLine;

/** Sets the pair for a depth of 8, 16, 24 or 32 bits. */
void Lines_Select(int32_t displayBits);
