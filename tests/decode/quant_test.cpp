// Tables of each quality against the standard's scaling, the cosine, and the tables that cjpeg writes.
#include "decode/quant.h"

#include "decode/huffman_tables.h"
#include "support/streams.h"

#include <cmath>
#include <numbers>

namespace {

/** The table of 64 bytes in a JFIF head, brought to natural order. */
std::vector<uint16_t> Table_In_File(const Bytes& jpeg, size_t offset) {
  std::vector<uint16_t> table(64);
  for (size_t i = 0; i < 64; ++i) table[(size_t)zigzagOrder[i]] = jpeg[offset + i];
  return table;
}

double Scale(size_t entry) {
  const auto axis = [](size_t k) { return k == 0 ? 1 : std::numbers::sqrt2 * std::cos((double)k * std::numbers::pi / 16); };
  return std::round(axis(entry / 8) * axis(entry % 8) * 16384);
}

TEST(Quant, AllTablesOfAllQualities) {
  const Bytes base = Read_File(Data_Path("scene-q50.jpg"));
  const std::vector<uint16_t> bases[2] = {Table_In_File(base, 25), Table_In_File(base, 94)};
  for (const int32_t quality : {INT32_MIN, -3, 0, 101, 255, INT32_MAX}) {
    uint16_t tables[2][64], limited[2][64];
    Quant_Build(quality, tables[0], tables[1]);
    Quant_Build(quality < 1 ? 1 : 100, limited[0], limited[1]);
    EXPECT_EQ(memcmp(tables, limited, sizeof tables), 0) << quality;
  }
  for (int32_t quality = 1; quality <= 100; ++quality) {
    uint16_t tables[2][64];
    Quant_Build(quality, tables[0], tables[1]);
    const double percent = quality < 50 ? std::floor(5000.0 / quality) : 200.0 - 2 * quality;
    for (size_t i = 0; i < 128; ++i) {
      const uint16_t* const table = tables[i / 64];
      const double exact = std::floor((bases[i / 64][i % 64] * percent + 50) / 100);
      ASSERT_EQ(table[i % 64], std::clamp(exact, 1.0, 255.0)) << quality << ", entry " << i;
      int16_t inverse[64], forward[64];
      if (i % 64 == 0) {
        Quant_Build_Inverse(inverse, table, 11);
        Quant_Build_Forward(forward, table, 11);
        for (size_t k = 0; k < 64; ++k) {
          const double factor = std::floor(table[k] * Scale(k) / 2048 + 0.5);
          ASSERT_EQ(inverse[k], factor) << quality << ", entry " << k;
          const auto reciprocal = (uint32_t)std::floor((std::floor(factor / 2) + 65536) / factor);
          ASSERT_EQ((uint16_t)forward[k], reciprocal % 65536) << quality << ", entry " << k;
        }
      }
    }
  }
}

TEST(Quant, SameTablesAsAnotherEncoder) {
  const struct {
    const char* name;
    int32_t quality;
  } files[] = {{"scene-q25.jpg", 25}, {"tile-96x64-q40.jpg", 40}, {"scene-q50.jpg", 50}, {"scene-q75.jpg", 75}};
  for (const auto& [name, quality] : files) {
    const Bytes jpeg = Read_File(Data_Path(name));
    std::vector<uint16_t> luma(64), chroma(64);
    Quant_Build(quality, luma.data(), chroma.data());
    EXPECT_EQ(luma, Table_In_File(jpeg, 25)) << name;
    EXPECT_EQ(chroma, Table_In_File(jpeg, 94)) << name;
  }
}

}  // namespace
