// Every kernel level compresses pictures of any size to the same bytes as the plain kernels.
#include "kernels/kernels.h"
#include "support/levels.h"
#include "support/streams.h"

namespace {

/** All results of a compression, and the picture that a later frame decodes to. */
struct Compression {
  Bytes out, planes, later;
  int32_t length = 0, quality = 0;

  Compression(uint32_t mask, int32_t width, int32_t height, const Bytes& pixels, int32_t given, int32_t way)
      : out(FrameStoreSize) {
    kernels = Kernels_Select(mask);
    const DecoderPtr decoder = Headless_Decoder(width, height);
    JdecCodec* const codec = decoder->codec;
    length = JDEC_Compress_RGB888(decoder.get(), given, pixels.data(), 0, out.data(), FrameStoreSize, way & 1, way & 2);
    EXPECT_EQ(codec->frame->length, length);
    quality = codec->quality;
    // Luma, Cb and Cr follow one another.
    planes.assign(codec->planes->yRows[0], codec->planes->yRows[0] + width * height + 2 * (width / 2) * (height / 2));
    const Bytes empty = Compact_Frame(width, height, 40, Bytes(20));
    EXPECT_EQ(Push(decoder.get(), empty), (int32_t)empty.size());
    later = Current_Picture(decoder.get());
  }
  bool operator==(const Compression&) const = default;
};

TEST_F(LibraryTest, EveryLevelCompressesAlike) {
  Noise noise{8};
  for (int32_t width = 1; width <= 150; ++width) {
    const int32_t height = noise.Between(1, 48), way = noise.Between(0, 3), given = noise.Between(0, 100);
    // With doubled rows the source is half as high, and nothing after it may be read.
    const int32_t rows = way & 2 ? height / 2 : height;
    Bytes pixels = noise.Some((size_t)(width * rows * 3));
    for (uint8_t& byte : pixels) byte = width % 3 ? byte : byte & 1 ? 255 : 0;
    const Compression plain(KernelPlain, width, height, pixels, given, way);
    for (const auto& [level, mask] : Test_Levels()) {
      ASSERT_TRUE(Compression(mask, width, height, pixels, given, way) == plain) << level << ' ' << width << 'x' << height;
    }
  }
}

TEST_F(LibraryTest, FramesThatDontFitTheStoreAreRefused) {
  Noise noise{9};
  const Bytes pixels = noise.Some(1000 * 650 * 3);
  for (const auto& [level, mask] : Test_Levels()) {
    const Compression refused(mask, 1000, 650, pixels, 100, 1);
    EXPECT_EQ(refused.length, 0) << level;
    EXPECT_TRUE(refused.out == Bytes(FrameStoreSize)) << level;
    EXPECT_TRUE(refused == Compression(KernelPlain, 1000, 650, pixels, 100, 1)) << level;
  }
}

}  // namespace
