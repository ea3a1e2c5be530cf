/* Presentation by GDI: a raster is stretched directly to the window. */
#pragma once

#include "display/context.h"

/** The part of a picture to show. */
struct PicturePart {
  int32_t x, y, width, height;
};

/** Stretches the part, which must lie within the raster, to that size at the window's upper left corner. Does nothing if the
 *  raster is null, or without memory or a device context. */
void Present_GDI(const JdecDisplay* display, const JdecRaster* raster, const PicturePart& part, SIZE target);
