/* The motion-area layer of a display while its surface is locked: the rows directly below the picture. */
#pragma once

#include "display/context.h"
#include "overlay/motion_state.h"

/** A locked layer. */
struct Layer {
  IDirectDrawSurface* owner;
  DDSURFACEDESC surface;
  int32_t width, height;  ///< Of the picture.
  int32_t rows;           ///< Rows of the layer: as many as the picture has, or fewer.
  int32_t templateRow;    ///< First row of the template strips, counted from the layer's first row.
  int32_t bytes;          ///< Bytes of a pixel.
  uint8_t* pixels;        ///< The layer's first byte; null if the lock gave no pixels, or rows is 0.
};

/** Arguments of overlay calls are clamped to -FarAway to FarAway first, so that sums of them don't overflow. */
constexpr int32_t FarAway = 1 << 28;
int32_t Within_Reach(int32_t value);

/** Restores and locks the display's surface. False for a null display, without a surface (GDI form), or if the lock fails. */
bool Layer_Lock(JdecDisplay* display, Layer* layer);
void Layer_Unlock(const Layer& layer);

/** The address of a pixel. row counts from the layer's first row. */
uint8_t* Layer_At(const Layer& layer, int32_t column, int32_t row);

/** Draw a line in the screen's depth (overlay/lines.h), clipped to the layer. In pictures 640 wide the row below the layer may be
 *  used too, for thick outlines. */
void Layer_Horizontal(const Layer& layer, int32_t from, int32_t to, int32_t row, uint32_t color);
void Layer_Vertical(const Layer& layer, int32_t from, int32_t to, int32_t column, uint32_t color);

/** Draws a rectangle's outline. In pictures 640 wide it is two pixels thick: a second outline is one pixel further right and
 *  down. */
void Layer_Outline(const Layer& layer, const LayerRect& rect, uint32_t color);

/** Moves a rectangle that goes over an edge of a picture of that size back into it; one that is larger than the picture starts at
 *  its left or top edge. Its size doesn't change. */
LayerRect Moved_Inside(const LayerRect& rect, int32_t width, int32_t height);
