/* State of the motion-area layer that all displays of the process share. Any thread may read and change it. */
#pragma once

#include <atomic>
#include <cstdint>

/* Colours as pixels of the surface's format. They are 0 at first and are sampled from the template when a display is made. */
extern std::atomic<uint32_t> mdColorFirst;   ///< Red.
extern std::atomic<uint32_t> mdColorSecond;  ///< Blue.
extern std::atomic<uint32_t> mdColor;        ///< One of the two: the outline of an area.

/** 1: the moving rectangle can be shown, and lines don't overwrite pixels of mdColorFirst. */
extern std::atomic<int32_t> mdRectMode;

/** A rectangle in layer pixels. */
struct LayerRect {
  int32_t x, y, width, height;
};

/** The rectangle that was drawn last in a layer, (0, 0, 320, 240) at first. */
LayerRect Last_Rect();
void Set_Last_Rect(const LayerRect& rect);
