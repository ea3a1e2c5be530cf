#include "platform/portable/paint/pixel_mix.h"

#include <algorithm>
#include <cstring>

namespace {

using Bytes8 = uint8_t __attribute__((vector_size(8)));
using Bytes16 = uint8_t __attribute__((vector_size(16)));
using Words8 = uint16_t __attribute__((vector_size(16)));
using Pairs = uint64_t __attribute__((vector_size(16)));

/** A pixel and the next one, each byte times its weight. */
inline Words8 Weigh_Pair(const uint32_t* pair, const PairWeights& weights) {
  Pairs both = {};
  std::memcpy(&both, pair, 8);
  Words8 lanes;
  std::memcpy(&lanes, weights.lanes, sizeof lanes);
  const auto spread =
      __builtin_shufflevector(reinterpret_cast<Bytes16>(both), Bytes16{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
  return reinterpret_cast<Words8>(spread) * lanes;
}

}  // namespace

MapEntry Map_Place(int64_t place, int64_t targetSize, int64_t sourceSize, bool smooth) {
  if (!smooth) {
    const auto nearest = static_cast<int32_t>((2 * place + 1) * sourceSize / (2 * targetSize));
    return {nearest, 0};
  }
  // By the centres of the pixels, in 1/65536 of a source pixel.
  const int64_t at = (2 * place + 1) * sourceSize * 32768 / targetSize - 32768;
  if (at <= 0) return {0, 0};
  const auto first = static_cast<int32_t>(at >> 16);
  if (first >= sourceSize - 1) return {static_cast<int32_t>(sourceSize - 1), 0};
  return {first, static_cast<uint32_t>(at >> 8 & 255)};
}

void Map_Columns(ColumnMap& map, int32_t targetWidth, int32_t sourceWidth, int32_t skipped, int32_t width, bool smooth) {
  if (map.targetWidth == targetWidth && map.sourceWidth == sourceWidth && map.skipped == skipped && map.width == width &&
      map.smooth == smooth)
    return;
  map.targetWidth = targetWidth, map.sourceWidth = sourceWidth, map.skipped = skipped, map.width = width, map.smooth = smooth;
  map.first.resize(static_cast<size_t>(width));
  map.weights.resize(smooth ? static_cast<size_t>(width) : 0);
  for (int32_t i = 0; i < width; ++i) {
    const MapEntry place = Map_Place(skipped + i, targetWidth, sourceWidth, smooth);
    map.first[static_cast<size_t>(i)] = place.first;
    if (!smooth) continue;
    uint16_t* const lanes = map.weights[static_cast<size_t>(i)].lanes;
    std::fill_n(lanes, 4, static_cast<uint16_t>(256 - place.weight));
    std::fill_n(lanes + 4, 4, static_cast<uint16_t>(place.weight));
  }
}

void Mix_Columns(const uint32_t* source, const ColumnMap& map, uint32_t* out) {
  // Two columns at a time.
  const int32_t last = map.width - 1;
  for (int32_t i = 0; i <= last; i += 2) {
    const auto at = static_cast<size_t>(i), next = static_cast<size_t>(std::min(i + 1, last));
    const auto left = reinterpret_cast<Pairs>(Weigh_Pair(source + map.first[at], map.weights[at]));
    const auto right = reinterpret_cast<Pairs>(Weigh_Pair(source + map.first[next], map.weights[next]));
    const auto firsts = reinterpret_cast<Words8>(__builtin_shufflevector(left, right, 0, 2));
    const auto seconds = reinterpret_cast<Words8>(__builtin_shufflevector(left, right, 1, 3));
    const auto mixed = __builtin_convertvector((firsts + seconds + 128) >> 8, Bytes8);
    std::memcpy(out + i, &mixed, sizeof mixed);
  }
}

void Mix_Rows(const uint8_t* first, const uint8_t* second, uint32_t weight, size_t bytes, uint8_t* out) {
  const auto ofFirst = static_cast<uint16_t>(256 - weight), ofSecond = static_cast<uint16_t>(weight);
  for (size_t i = 0; i < bytes; ++i) {
    out[i] = static_cast<uint8_t>(static_cast<uint16_t>(first[i] * ofFirst + second[i] * ofSecond + 128) >> 8);
  }
}
