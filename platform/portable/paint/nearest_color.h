/* The nearest of 256 colours, for pictures of other depths on an 8-bit screen. For the files of the layer alone. */
#pragma once

#include <cstdint>
#include <vector>

/** A palette, and for each part of the colour cube the entries that may be nearest to a colour in it. A part is filled when a
 * colour in it is first looked up. */
struct NearestColors {
  struct Cell {
    uint32_t begin;  ///< In `candidates`.
    uint32_t count;  ///< 0: not filled yet.
  };
  std::vector<uint32_t> colors;  ///< 256, 0xRRGGBB.
  std::vector<Cell> cells;
  std::vector<uint32_t> candidates;  ///< The index in the upper byte, its colour below.
};

/** The record for a palette of 256 colours; valid until the same thread asks for another palette. */
NearestColors* Nearest_For(const uint32_t* colors);

/** The first index of the colour nearest to `color`. */
uint32_t Nearest_Index(NearestColors* nearest, uint32_t color);
