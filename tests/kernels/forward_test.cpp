// The forward transform of every level on blocks computed elsewhere.
#include "kernels/kernels.h"
#include "support/levels.h"
#include "support/streams.h"

#include <array>
#include <fstream>
#include <sstream>

TEST_F(LibraryTest, ForwardTransformGivesTheKnownBlocks) {
  const DecoderPtr decoder = Headless_Decoder(16, 16);
  JdecCodec* const codec = decoder->codec;
  for (const auto& [level, mask] : Test_Levels()) {
    std::ifstream file(Data_Path("forward-blocks.txt"));
    int lines = 0;
    for (std::string line; std::getline(file, line); ++lines) {
      std::istringstream in(line);
      const std::vector<int32_t> numbers(std::istream_iterator<int32_t>(in), {});
      ASSERT_EQ(numbers.size(), 2u + 64 + 64) << line;
      Codec_Set_Quality(codec, numbers[0]);
      Bytes samples(numbers.begin() + 2, numbers.begin() + 66);
      uint8_t* rows[8];
      for (size_t i = 0; i < 8; ++i) rows[i] = &samples[8 * i];
      std::array<int32_t, 64> block;
      Kernels_Select(mask).forwardRow(rows, 1, numbers[1] ? codec->lumaForward : codec->chromaForward,
                                      numbers[1] ? codec->lumaInverse : codec->chromaInverse, block.data());
      EXPECT_TRUE(std::equal(block.begin(), block.end(), numbers.begin() + 66)) << line;
    }
    EXPECT_EQ(lines, 60);
  }
}
