#include "platform/portable/paint/nearest_color.h"

#include <algorithm>

namespace {

/** A cell holds the colours whose channels have the same upper four bits: a cube with that many values on each side. */
constexpr int32_t CellSide = 16, CellsInRow = 256 / CellSide;

int32_t Channel(uint32_t color, int shift) { return static_cast<int32_t>(color >> shift & 255); }

int32_t Distance(uint32_t a, uint32_t b) {
  const int32_t blue = Channel(a, 0) - Channel(b, 0), green = Channel(a, 8) - Channel(b, 8),
                red = Channel(a, 16) - Channel(b, 16);
  return blue * blue + green * green + red * red;
}

/** Distances of a colour to the nearest and to the farthest place in a cell. */
struct Reach {
  int32_t least, most;
};

Reach Reach_Of(uint32_t color, uint32_t corner) {
  Reach reach = {0, 0};
  for (const int shift : {0, 8, 16}) {
    const int32_t value = Channel(color, shift), low = Channel(corner, shift), high = low + CellSide - 1;
    const int32_t least = std::max({low - value, value - high, 0}), most = std::max(value - low, high - value);
    reach.least += least * least;
    reach.most += most * most;
  }
  return reach;
}

/** Keeps the colours that may be nearest. One colour is at most `limit` from all of the cell, so those farther away never are. */
void Fill_Cell(NearestColors* nearest, NearestColors::Cell* cell, uint32_t corner) {
  int32_t limit = INT32_MAX;
  for (const uint32_t color : nearest->colors) limit = std::min(limit, Reach_Of(color, corner).most);
  cell->begin = static_cast<uint32_t>(nearest->candidates.size());
  for (size_t i = 0; i < nearest->colors.size(); ++i) {
    const uint32_t color = nearest->colors[i] & 0xFFFFFF;
    if (Reach_Of(color, corner).least <= limit) nearest->candidates.push_back(static_cast<uint32_t>(i << 24) | color);
  }
  cell->count = static_cast<uint32_t>(nearest->candidates.size()) - cell->begin;
}

}  // namespace

NearestColors* Nearest_For(const uint32_t* colors) {
  thread_local NearestColors shared;
  if (!std::equal(shared.colors.begin(), shared.colors.end(), colors) || shared.colors.empty()) {
    shared.colors.assign(colors, colors + 256);
    shared.cells.assign(size_t{CellsInRow} * CellsInRow * CellsInRow, {});
    shared.candidates.clear();
  }
  return &shared;
}

uint32_t Nearest_Index(NearestColors* nearest, uint32_t color) {
  NearestColors::Cell* const cell = &nearest->cells[(color >> 12 & 0xF00) | (color >> 8 & 0xF0) | (color >> 4 & 0xF)];
  if (cell->count == 0) Fill_Cell(nearest, cell, color & 0xF0F0F0);
  const uint32_t* const candidates = &nearest->candidates[cell->begin];
  uint32_t best = UINT32_MAX;
  for (uint32_t i = 0; i < cell->count; ++i) {
    best = std::min(best, static_cast<uint32_t>(Distance(candidates[i], color)) << 8 | candidates[i] >> 24);
  }
  return best & 0xFF;
}
