/* The nearest of 256 colours, for pictures that come to a screen of 8 bits by their colours. */
#pragma once

#include <cstdint>
#include <vector>

/** A palette, and for each part of the colour cube the entries that may be nearest to a colour in it, found when first asked
 * for. */
struct NearestColors {
  struct Cell {
    uint32_t begin;  ///< In `candidates`.
    uint32_t count;  ///< 0: not asked for yet.
  };
  std::vector<uint32_t> colors;  ///< 256, 0xRRGGBB.
  std::vector<Cell> cells;
  std::vector<uint32_t> candidates;  ///< The index in the upper byte, its colour below.
};

/** Those of a palette of 256 colours; until it is asked for another one, on the same thread. */
NearestColors* Nearest_For(const uint32_t* colors);

/** The first index of the colour nearest to `color`. */
uint32_t Nearest_Index(NearestColors* nearest, uint32_t color);
