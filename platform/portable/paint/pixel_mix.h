/* Places of a stretching copy, and the mixing of neighbours in between. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/** Where a target place comes from. */
struct MapEntry {
  int32_t first;    ///< A source place,
  uint32_t weight;  ///< and how much the one behind it has of the mixture, of 256.
};

/** The source place of a target place. Smooth: centres of places are laid over each other. Not smooth: the nearest, weight 0. */
MapEntry Map_Place(int64_t place, int64_t targetSize, int64_t sourceSize, bool smooth);

/** Weights of two neighbours: four for the bytes of the first pixel, four for those of the second. */
struct PairWeights {
  alignas(16) uint16_t lanes[8];
};

/** The source column of each target column, counted from the source rectangle's left. */
struct ColumnMap {
  int32_t targetWidth, sourceWidth, skipped, width;  ///< `skipped` columns of the target lie left of the view.
  bool smooth;
  std::vector<int32_t> first;
  std::vector<PairWeights> weights;  ///< With smooth only.
};

/** Fills the map, unless it holds these columns already. */
void Map_Columns(ColumnMap& map, int32_t targetWidth, int32_t sourceWidth, int32_t skipped, int32_t width, bool smooth);

/** Mixes neighbours of a row of source colours by a smooth map. Behind the source a word more is read, and behind an odd last
 * column one more is written. */
void Mix_Columns(const uint32_t* source, const ColumnMap& map, uint32_t* out);

/** Mixes two rows byte by byte; weight of 256 for the second. */
void Mix_Rows(const uint8_t* first, const uint8_t* second, uint32_t weight, size_t bytes, uint8_t* out);
