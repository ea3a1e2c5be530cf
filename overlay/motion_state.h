/* What the overlays of the process share. Each display and each call change it for all displays; reads and writes on several
 * threads don't race. */
#pragma once

#include <atomic>
#include <cstdint>

/* Colours of the motion area as pixels of the surface's format, 0 at first; sampled from the template when a display is made. */
extern std::atomic<uint32_t> mdColorFirst;   ///< Red.
extern std::atomic<uint32_t> mdColorSecond;  ///< Blue.
extern std::atomic<uint32_t> mdColor;        ///< Frames an area: one of the two.

/** 1: lines leave pixels of mdColorFirst alone, and the moving rectangle is shown. */
extern std::atomic<int32_t> mdRectMode;

/** A rectangle in layer pixels. */
struct LayerRect {
  int32_t x, y, width, height;
};

/** The last rectangle drawn in a layer, (0, 0, 320, 240) at first. */
LayerRect Last_Rect();
void Set_Last_Rect(const LayerRect& rect);
