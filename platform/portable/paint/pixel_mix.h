/* Where the pixels of a stretching copy come from, and how neighbours are mixed. For the files of the layer
 * alone. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/** Where a target column or row comes from. */
struct MapEntry {
  int32_t first;    ///< A source column or row.
  uint32_t weight;  ///< Share of the next one in the mixture, of 256.
};

/** The source of a target column or row. Smooth: by the centres of the pixels. Not smooth: the nearest, weight 0. */
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

/** Mixes neighbours of a row of source colours by a smooth map. One word after the source is read, and after an odd last column
 * one more is written. */
void Mix_Columns(const uint32_t* source, const ColumnMap& map, uint32_t* out);

/** Mixes two rows byte by byte; weight of 256 for the second. */
void Mix_Rows(const uint8_t* first, const uint8_t* second, uint32_t weight, size_t bytes, uint8_t* out);
