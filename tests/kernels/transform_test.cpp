// The transforms on blocks computed elsewhere, and the packed form of the inverse one beside the plain one.
#include "decode/picture_decode.h"
#include "pixel/color_tables.h"
#include "pixel/compress.h"
#include "support/inputs.h"
#include "support/levels.h"

#include <sstream>

namespace {

using Block = std::vector<int32_t>;

/** Runs a kernel on a row of blocks into rows that start at any address, and checks that nothing beside them is written. */
Bytes Transformed(IdctRowKernel kernel, const Block& blocks, const int16_t* table) {
  const size_t width = blocks.size() / 8, pitch = width + 32 + 1;
  Bytes store(pitch * 8 + 32, 0xA7), samples;
  uint8_t* rows[8];
  for (size_t r = 0; r < 8; ++r) rows[r] = &store[pitch * r + 16];
  kernel(blocks.data(), (int32_t)(blocks.size() / 64), table, rangeLimit, rows);
  for (uint8_t* row : rows) {
    samples.insert(samples.end(), row, row + width);
    std::fill_n(row, width, 0xA7);
  }
  EXPECT_EQ((size_t)std::count(store.begin(), store.end(), 0xA7), store.size());
  return samples;
}

/** A line of a file of blocks: quality, 1 for luma, 64 numbers and what they become. */
struct KnownBlock {
  int32_t quality;
  bool isLuma;
  Block from, to;
};

std::vector<KnownBlock> Known_Blocks(const std::string& name) {
  std::ifstream file(Data_Path(name));
  std::vector<KnownBlock> blocks;
  for (std::string line; std::getline(file, line);) {
    std::istringstream in(line);
    const Block numbers(std::istream_iterator<int32_t>(in), {});
    if (numbers.size() != 2 + 64 + 64) ADD_FAILURE() << line;
    const auto values = numbers.begin() + 2;
    blocks.push_back({numbers[0], numbers[1] != 0, Block(values, values + 64), Block(values + 64, numbers.end())});
  }
  EXPECT_EQ(blocks.size(), 60u);
  return blocks;
}

struct Transform : CodecTest {
  const TestFrame scene = Load_Frame("scene-q75.jpg", 75);
  const CodecPtr owner = Whole_Codec(scene.width, scene.height);
  JdecCodec* const codec = owner.get();

  /** The scene's pixels as the encoder takes them. */
  Bytes Scene_Pixels() {
    std::copy(scene.jfif.begin(), scene.jfif.end(), codec->frame->data);
    codec->frame->length = (int32_t)scene.jfif.size();
    codec->frame->position = 623;
    Codec_Set_Quality(codec, scene.quality);
    Decode_Picture(codec, {codec->raster, PixelRgb24, 0, RasterRead});
    const uint8_t* const pixels = codec->raster->rows[scene.height - 1];
    return Bytes(pixels, pixels + codec->raster->pitch * scene.height);
  }
};

TEST_F(Transform, ForwardGivesTheKnownBlocks) {
  for (const auto& [quality, isLuma, samples, expected] : Known_Blocks("forward-blocks.txt")) {
    Codec_Set_Quality(codec, quality);
    Bytes store(samples.begin(), samples.end());
    uint8_t* rows[8];
    for (size_t i = 0; i < 8; ++i) rows[i] = &store[8 * i];
    for (const auto& [level, mask] : Test_Levels()) {
      Block block(64);
      Kernels_Select(mask).forwardRow(rows, 1, isLuma ? codec->lumaForward : codec->chromaForward,
                                      isLuma ? codec->lumaInverse : codec->chromaInverse, block.data());
      EXPECT_EQ(block, expected) << level << ", quality " << quality;
    }
  }
}

TEST_F(Transform, InverseGivesTheKnownBlocks) {
  for (const auto& [quality, isLuma, coefficients, expected] : Known_Blocks("inverse-blocks.txt")) {
    Codec_Set_Quality(codec, quality);
    EXPECT_EQ(Transformed(Idct_Row_Plain, coefficients, isLuma ? codec->lumaInverse : codec->chromaInverse),
              Bytes(expected.begin(), expected.end()))
        << "quality " << quality;
  }
}

TEST_F(Transform, PackedInverseDiffersInTheLastPlaceAtMost) {
  const Bytes pixels = Scene_Pixels();
  for (const int32_t quality : {0, 50, 80, 100}) {
    Codec_Transform_RGB888(codec, quality, pixels.data(), false);
    const int32_t words = scene.width * 8;
    int32_t differ = 0;
    for (int32_t r = 0; r < scene.height / 8; ++r) {
      const Block blocks(codec->coefY[r], codec->coefY[r] + words);
      const Bytes plain = Transformed(Idct_Row_Plain, blocks, codec->lumaInverse);
      const Bytes packed = Transformed(Idct_Row_Packed_Plain, blocks, codec->lumaInverse);
      for (size_t i = 0; i < plain.size(); ++i) {
        EXPECT_LE(std::abs(plain[i] - packed[i]), 1) << quality;
        differ += plain[i] != packed[i];
      }
    }
    EXPECT_LT(differ, scene.width * scene.height / 20) << quality;
  }
}

TEST_F(Transform, InverseOfConstantBlocksOfAnySize) {
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
