// The tables of each quality, against cjpeg's quantisers scaled as in the standard, and against the cosine.
#include "decode/quant.h"

#include "decode/huffman_tables.h"
#include "support/streams.h"

#include <cmath>
#include <numbers>

namespace {

double Scale(size_t entry) {
  const auto axis = [](size_t k) { return k == 0 ? 1 : std::numbers::sqrt2 * std::cos((double)k * std::numbers::pi / 16); };
  return std::round(axis(entry / 8) * axis(entry % 8) * 16384);
}

TEST(Quant, AllTablesOfAllQualities) {
  const Bytes base = Read_File(Data_Path("scene-q50.jpg"));
  for (int32_t quality = -1; quality <= 256; ++quality) {
    uint16_t tables[2][64];
    Quant_Build(quality == -1 ? INT32_MIN : quality == 256 ? INT32_MAX : quality, tables[0], tables[1]);
    const int32_t limited = std::clamp(quality, 1, 100);
    const double percent = limited < 50 ? std::floor(5000.0 / limited) : 200.0 - 2 * limited;
    for (size_t t = 0; t < 2; ++t) {
      int16_t inverse[64], forward[64];
      Quant_Build_Inverse(inverse, tables[t], 11);
      Quant_Build_Forward(forward, tables[t], 11);
      for (size_t i = 0; i < 64; ++i) {
        const auto k = (size_t)zigzagOrder[i];
        const double exact = std::floor((base[25 + 69 * t + i] * percent + 50) / 100);
        ASSERT_EQ(tables[t][k], std::clamp(exact, 1.0, 255.0)) << quality << ", entry " << k;
        const double factor = std::floor(tables[t][k] * Scale(k) / 2048 + 0.5);
        ASSERT_EQ(inverse[k], factor) << quality << ", entry " << k;
        const auto reciprocal = (uint32_t)std::floor((std::floor(factor / 2) + 65536) / factor);
        ASSERT_EQ((uint16_t)forward[k], reciprocal % 65536) << quality << ", entry " << k;
      }
    }
  }
}

}  // namespace
