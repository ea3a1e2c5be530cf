/* The motion-search caption and rectangle, drawn into each frame. */
#pragma once

#include "display/context.h"

/** Draws caption and rectangle in red on the frame rows of the off-screen surface; `width` is the picture's. Does nothing for
 * this frame when the surface gives no device context. */
void Motion_Search_Draw(JdecDisplay* display, int32_t width);
