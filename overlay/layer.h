/* The motion-area layer of a display while its surface is locked: rows right below the picture's. */
#pragma once

#include "display/context.h"
#include "overlay/motion_state.h"

/** The layer, and what may be drawn in it. */
struct Layer {
  IDirectDrawSurface* owner;
  DDSURFACEDESC surface;
  int32_t width, height;  ///< Of the picture.
  int32_t rows;           ///< Of the layer: as many as the picture's, or fewer.
  int32_t strips;         ///< The first row of the template's strips, counted from the layer's first.
  int32_t bytes;          ///< Of a pixel.
  uint8_t* pixels;        ///< The layer's first byte; null when the lock gave no pixels, or rows is 0.
};

/** Arguments of overlay calls are brought to this distance from 0 first, so that no sum of them overflows. */
constexpr int32_t FarAway = 1 << 28;
int32_t Within_Reach(int32_t value);

/** Restores and locks the display's surface. False without a display, without a surface (GDI form), and when the lock fails. */
bool Layer_Lock(JdecDisplay* display, Layer* layer);
void Layer_Unlock(const Layer& layer);

/** Where a pixel of the layer lies; row counts from its first row. */
uint8_t* Layer_At(const Layer& layer, int32_t column, int32_t row);

/** The line primitives of the screen's depth (overlay/lines.h), cut to the layer and to the one row below it, which a thick
 * outline of a picture 640 wide may use. */
void Layer_Horizontal(const Layer& layer, int32_t from, int32_t to, int32_t row, uint32_t color);
void Layer_Vertical(const Layer& layer, int32_t from, int32_t to, int32_t column, uint32_t color);

/** A rectangle's outline, two pixels thick in pictures 640 wide, the second line one pixel further right and down. */
void Layer_Outline(const Layer& layer, const LayerRect& rect, uint32_t color);

/** Moves a rectangle back into a picture of that size where it reaches out at the right or at the bottom; it keeps its size. */
LayerRect Moved_Inside(const LayerRect& rect, int32_t width, int32_t height);
