/* The caption and rectangle of the motion search, drawn into each frame. */
#pragma once

#include "display/context.h"

/** Draws caption and rectangle in red on the picture's rows of the off-screen surface, clipped to them. width, height: those of
 *  the picture. Does nothing if the surface gives no device context. */
void Motion_Search_Draw(JdecDisplay* display, int32_t width, int32_t height);
