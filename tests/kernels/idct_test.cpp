// the inverse transform against the mathematics and known blocks.
#include "kernels/kernels.h"
#include "pixel/color_tables.h"
#include "pixel/compress.h"
#include "support/streams.h"

#include <cmath>
#include <numbers>
#include <sstream>

namespace {

using Block = std::vector<int32_t>;

/** Runs a kernel on a row of blocks into rows that start at any address, and checks that nothing beside them is written. */
Bytes Transformed(IdctRowKernel kernel, const Block& blocks, const int16_t* table, size_t shift = 0) {
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

/** Cosine of a frequency (row and column) at a position. */
double Basis(size_t frequency, size_t position) {
  const auto axis = [](size_t f, size_t p) {
    return (f == 0 ? std::sqrt(0.125) : 0.5) * std::cos((double)((2 * p + 1) * f) * std::numbers::pi / 16);
  };
  return axis(frequency / 8, position / 8) * axis(frequency % 8, position % 8);
}

struct IdctKernel : LibraryTest {
  const TestFrame scene = Load_Frame("scene-q75.jpg", 75);
  const DecoderPtr decoder = Headless_Decoder(scene.width, scene.height);
  JdecCodec* const codec = decoder->codec;
};

TEST_F(IdctKernel, FollowsTheMathematics) {
  // With the largest error allowed: the factors of fine tables are coarse. The result is rounded down, so the mean is a half.
  const Bytes pixels = Picture_Of(scene);
  for (const auto& [compressedAt, largest] : {std::pair{0, 1.2}, {50, 1.4}, {80, 2.0}, {100, 2.6}}) {
    Codec_Transform_RGB888(codec, compressedAt, &pixels[54], false);
    double sum = 0, differ = 0;
    const int32_t columns = scene.width / 8, count = scene.height / 8 * columns;
    for (int32_t b = 0; b < count; ++b) {
      const int32_t* const from = codec->coefY[b / columns] + b % columns * 64;
      const Block block(from, from + 64);
      const Bytes samples = Transformed(Idct_Row_Plain, block, codec->lumaInverse);
      const Bytes packed = Transformed(Idct_Row_Packed_Plain, block, codec->lumaInverse);
      for (size_t i = 0; i < 64; ++i) {
        double exact = 128;
        for (size_t f = 0; f < 64; ++f) exact += block[f] ? block[f] * codec->lumaQuant[f] * Basis(f, i) : 0;
        const double error = std::abs(std::clamp(exact, 0.0, 255.0) - samples[i]);
        sum += error;
        EXPECT_LT(error, largest) << compressedAt;
        EXPECT_LE(std::abs(samples[i] - packed[i]), 1) << compressedAt;
        differ += samples[i] != packed[i];
      }
    }
    EXPECT_LT(sum / count / 64, 0.51) << compressedAt;
    EXPECT_LT(differ / count / 64, 0.05) << compressedAt;
  }
}

TEST_F(IdctKernel, GivesTheKnownBlocks) {
  std::ifstream file(Data_Path("inverse-blocks.txt"));
  int lines = 0;
  for (std::string line; std::getline(file, line); ++lines) {
    std::istringstream in(line);
    std::vector<int32_t> numbers(std::istream_iterator<int32_t>(in), {});
    ASSERT_EQ(numbers.size(), 2u + 64 + 64) << line;
    Codec_Set_Quality(codec, numbers[0]);
    EXPECT_EQ(Transformed(Idct_Row_Plain, Block(numbers.begin() + 2, numbers.begin() + 66),
                          numbers[1] ? codec->lumaInverse : codec->chromaInverse),
              Bytes(numbers.begin() + 66, numbers.end()))
        << line;
  }
  EXPECT_EQ(lines, 60);
}

TEST_F(IdctKernel, ConstantBlocksOfAnySizeOfCoefficient) {
  Codec_Set_Quality(codec, 50);
  for (const int32_t c : {0, 1, -1, 63, 64, -64, 65, -256, 255, 300, 2047, 100000, INT32_MAX, INT32_MIN, INT32_MIN + 1}) {
    Block block(64);
    block[0] = c;
    // Factor 128, wrapping at 32 bits; the clamp sees 10 bits.
    const int32_t index = (((int32_t)((uint32_t)c * 128u) >> 6) + 128) & 0x3FF;
    const Bytes expected(64, (uint8_t)(index < 256 ? index : index < 640 ? 255 : 0));
    EXPECT_EQ(Transformed(Idct_Row_Plain, block, codec->lumaInverse), expected) << c;
    if (std::abs((double)c) > 255) continue;
    EXPECT_EQ(Transformed(Idct_Row_Packed_Plain, block, codec->lumaInverse), expected) << c;
  }
}

}  // namespace
