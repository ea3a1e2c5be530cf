// The inverse transform: plain against the mathematics and known blocks, other levels and the packed form against plain.
#include "decode/quant.h"
#include "pixel/color_tables.h"
#include "support/levels.h"
#include "support/streams.h"

#include <array>
#include <cmath>
#include <numbers>
#include <sstream>

namespace {

using Block = std::array<int32_t, 64>;
using Samples = std::array<uint8_t, 64>;

struct Tables {
  uint16_t luma[64], chroma[64];
  int16_t lumaInverse[64], chromaInverse[64];
  explicit Tables(int32_t quality) {
    Quant_Build(quality, luma, chroma);
    Quant_Build_Inverse(lumaInverse, luma, 11);
    Quant_Build_Inverse(chromaInverse, chroma, 11);
  }
};

/** Runs a kernel on a row of blocks into rows that start at any address, and checks that nothing beside them is written. */
Bytes Transformed(IdctRowKernel kernel, const std::vector<int32_t>& blocks, const int16_t* table, size_t shift) {
  const size_t width = blocks.size() / 8, pitch = width + 32 + 1;
  Bytes store(pitch * 8 + 32, 0xA7), samples;
  uint8_t* rows[8];
  for (size_t r = 0; r < 8; ++r) rows[r] = &store[pitch * r + 16 + shift];
  kernel(blocks.data(), (int32_t)(blocks.size() / 64), table, rangeLimit, rows);
  for (uint8_t* row : rows) {
    samples.insert(samples.end(), row, row + width);
    std::fill_n(row, width, 0xA7);
  }
  EXPECT_EQ((size_t)std::count(store.begin(), store.end(), 0xA7), store.size());
  return samples;
}

Samples Transformed(IdctRowKernel kernel, const Block& block, const int16_t* table) {
  const Bytes bytes = Transformed(kernel, std::vector<int32_t>(block.begin(), block.end()), table, 0);
  Samples samples;
  std::copy(bytes.begin(), bytes.end(), samples.begin());
  return samples;
}

double Basis(size_t frequency, size_t position) {
  const double scale = frequency == 0 ? std::sqrt(0.125) : 0.5;
  return scale * std::cos((double)((2 * position + 1) * frequency) * std::numbers::pi / 16);
}

/** The inverse transform as the mathematics has it. */
std::array<double, 64> Exact_Inverse(const Block& block, const uint16_t* quant) {
  std::array<double, 64> out{};
  for (size_t i = 0; i < 64; ++i) {
    out[i] = 128;
    for (size_t f = 0; f < 64; ++f) out[i] += block[f] * quant[f] * Basis(f / 8, i / 8) * Basis(f % 8, i % 8);
  }
  return out;
}

/** Coefficients of a picture's block: an edge, a ramp or noise, transformed and quantised. */
Block Natural_Block(Noise& noise, const uint16_t* quant) {
  const int32_t base = noise.Between(20, 235), slopeX = noise.Between(-12, 12), slopeY = noise.Between(-12, 12);
  const int32_t edge = noise.Between(0, 15), step = noise.Between(-150, 150), grain = noise.Between(0, 20);
  double samples[64];
  for (int32_t i = 0; i < 64; ++i) {
    const int32_t value = base + slopeX * (i % 8) + slopeY * (i / 8) + (i % 8 + i / 8 > edge ? step : 0);
    samples[i] = std::clamp(value + noise.Between(-grain, grain), 0, 255) - 128;
  }
  Block block;
  for (size_t f = 0; f < 64; ++f) {
    double sum = 0;
    for (size_t i = 0; i < 64; ++i) sum += samples[i] * Basis(f / 8, i / 8) * Basis(f % 8, i % 8);
    block[f] = (int32_t)std::lround(sum / quant[f]);
  }
  return block;
}

struct IdctKernel : LibraryTest {
  const Kernels plain = Kernels_Select(KernelPlain);
};

TEST_F(IdctKernel, FollowsTheMathematics) {
  Noise noise{1};
  // The largest error allowed and the mean one. The result is rounded down, and the factors of fine tables are coarse.
  const struct {
    int32_t quality;
    double largest, mean;
  } cases[] = {{25, 1.5, 0.48}, {50, 1.5, 0.48}, {75, 2.5, 0.5}, {95, 6.5, 0.6}};
  for (const auto& [quality, largest, mean] : cases) {
    const Tables tables(quality);
    double sum = 0, worst = 0;
    for (int round = 0; round < 500; ++round) {
      const Block block = Natural_Block(noise, tables.luma);
      const auto exact = Exact_Inverse(block, tables.luma);
      const Samples samples = Transformed(plain.idctRow, block, tables.lumaInverse);
      for (size_t i = 0; i < 64; ++i) {
        const double error = std::abs(std::clamp(exact[i], 0.0, 255.0) - samples[i]);
        sum += error;
        worst = std::max(worst, error);
      }
    }
    EXPECT_LT(worst, largest) << quality;
    EXPECT_LT(sum / (500 * 64), mean) << quality;
  }
}

TEST_F(IdctKernel, GivesTheKnownBlocks) {
  std::ifstream file(Data_Path("inverse-blocks.txt"));
  int lines = 0;
  for (std::string line; std::getline(file, line); ++lines) {
    std::istringstream in(line);
    int32_t quality, luma, sample;
    Block block;
    Samples expected;
    in >> quality >> luma;
    for (int32_t& coefficient : block) in >> coefficient;
    for (uint8_t& value : expected) {
      in >> sample;
      value = (uint8_t)sample;
    }
    ASSERT_TRUE(in) << line;
    const Tables tables(quality);
    EXPECT_EQ(Transformed(plain.idctRow, block, luma ? tables.lumaInverse : tables.chromaInverse), expected) << line;
  }
  EXPECT_EQ(lines, 60);
}

TEST_F(IdctKernel, ConstantBlocksOfAnySizeOfCoefficient) {
  const Tables tables(50);
  const int32_t extremes[] = {0, 1, -1, 63, 64, -64, 65, -256, 255, 300, 2047, 100000, INT32_MAX, INT32_MIN, INT32_MIN + 1};
  for (const int32_t c : extremes) {
    Block block{};
    block[0] = c;
    // Factor 128, wrapping at 32 bits; the clamp sees 10 bits.
    const int32_t index = (((int32_t)((uint32_t)c * 128u) >> 6) + 128) & 0x3FF;
    const uint8_t expected = (uint8_t)(index < 256 ? index : index < 640 ? 255 : 0);
    Samples all;
    all.fill(expected);
    EXPECT_EQ(Transformed(plain.idctRow, block, tables.lumaInverse), all) << c;
    if (std::abs((double)c) > 255) continue;
    EXPECT_EQ(expected, std::clamp(2 * c + 128, 0, 255)) << c;
    EXPECT_EQ(Transformed(plain.idctRowPacked, block, tables.lumaInverse), all) << c;
  }
}

TEST_F(IdctKernel, PackedFormDiffersInTheLastPlaceOnly) {
  Noise noise{2};
  for (const int32_t quality : {10, 50, 75, 100}) {
    const Tables tables(quality);
    int different = 0;
    for (int round = 0; round < 500; ++round) {
      const Block block = Natural_Block(noise, tables.luma);
      const Samples one = Transformed(plain.idctRow, block, tables.lumaInverse);
      const Samples other = Transformed(plain.idctRowPacked, block, tables.lumaInverse);
      for (size_t i = 0; i < 64; ++i) {
        EXPECT_LE(std::abs(one[i] - other[i]), 1) << quality << " round " << round;
        different += one[i] != other[i];
      }
    }
    EXPECT_LT(different, 500 * 64 / 20) << quality;
  }
}

TEST_F(IdctKernel, LevelsAgreeWithPlain) {
  Noise noise{5};
  for (const TestLevel& level : testLevels) {
    const Kernels tested = Kernels_Select(level.mask);
    for (int round = 0; round < 1600; ++round) {
      const Tables tables(noise.Between(1, 100));
      std::vector<int32_t> blocks;
      const int32_t shape = round % 8, count = round / 8 % 17 + 1;
      for (int32_t b = 0; b < count; ++b) {
        Block block{};
        if (shape == 0) block.fill(INT32_MIN + noise.Between(0, 9));
        if (shape == 1) block.fill(INT32_MAX - noise.Between(0, 9));
        if (shape == 2) block[0] = noise.Between(-2047, 2047);
        if (shape == 3) block[(size_t)(round + b) % 64] = noise.Between(-32768, 32767);
        if (shape == 4) std::generate(block.begin(), block.end(), [&] { return noise.Between(-1023, 1023); });
        if (shape == 5) std::generate(block.begin(), block.end(), [&] { return (int32_t)(noise.Next() << 8 ^ noise.Next()); });
        if (shape >= 6) block = Natural_Block(noise, tables.luma);
        blocks.insert(blocks.end(), block.begin(), block.end());
      }
      const size_t shift = noise.Next() % 16;
      EXPECT_EQ(Transformed(tested.idctRow, blocks, tables.lumaInverse, shift),
                Transformed(Idct_Row_Plain, blocks, tables.lumaInverse, shift))
          << level.name << " round " << round;
      EXPECT_EQ(Transformed(tested.idctRowPacked, blocks, tables.chromaInverse, shift),
                Transformed(Idct_Row_Packed_Plain, blocks, tables.chromaInverse, shift))
          << level.name << " round " << round;
    }
  }
}

}  // namespace
