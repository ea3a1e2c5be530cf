/* The GDI path to the screen: a raster stretched straight to the window. */
#pragma once

#include "display/context.h"

/** The part of a picture to show. */
struct PicturePart {
  int32_t x, y, width, height;
};

/** Stretches the part, which lies within the raster, to the window's upper left corner at that size, in the colours of the
 * raster's format. Nothing happens with a null raster or without memory or a device context. */
void Present_GDI(const JdecDisplay* display, const JdecRaster* raster, const PicturePart& part, SIZE target);
