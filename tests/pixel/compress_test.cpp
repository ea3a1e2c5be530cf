// What the encoder writes, read by the decoder and by djpeg.
#include "kernels/kernels.h"
#include "support/djpeg.h"
#include "support/levels.h"

namespace {

Bytes Saved(JdecDecoder* decoder) {
  const std::string path = Scratch_Path("compress.jpg");
  FILE* const file = fopen(path.c_str(), "wb");
  EXPECT_EQ(JDEC_Write_JFIF_File(decoder, file), 2);
  fclose(file);
  return Read_File(path);
}

TEST_F(LibraryTest, WhatIsCompressedComesBack) {
  const TestFrame scene = Load_Frame("scene-q75.jpg", 75);
  const int32_t width = scene.width, height = scene.height;
  const Bytes bmp = Picture_Of(scene), pixels(bmp.begin() + 54, bmp.end());
  const struct {
    int32_t given, quality;
    double least;
  } cases[] = {{INT32_MIN, 10, 23}, {0, 10, 23}, {33, 36, 28}, {50, 50, 29}, {100, 90, 41}, {INT32_MAX, 90, 41}};
  kernels = Kernels_Select(KernelPlain);  // On the road of whole planes coefficients can be looked at.
  for (const auto& [given, quality, least] : cases) {
    const DecoderPtr encoder = Headless_Decoder(width, height), decoder = Headless_Decoder(16, 16);
    const Bytes jfif = Compressed(encoder.get(), given, pixels, 1), compact = Compressed(encoder.get(), given, pixels, 0);
    EXPECT_EQ(Saved(encoder.get()), jfif);
    for (const Bytes& frame : {jfif, compact}) {
      Bytes tooSmall(frame.size() - 1);
      EXPECT_EQ(JDEC_Compress_RGB888(encoder.get(), given, pixels.data(), 0, tooSmall.data(), (int32_t)tooSmall.size(),
                                     frame == jfif, 0),
                0);
      EXPECT_EQ(Push(decoder.get(), frame), (int32_t)frame.size());
      const JdecCodec &in = *encoder->codec, &out = *decoder->codec;
      for (int32_t r = 0; r < height / 16 * 2; ++r) {
        const int32_t units = width / 16 * 64;
        ASSERT_TRUE(std::equal(in.coefY[r], in.coefY[r] + 2 * units, out.coefY[r]));
        ASSERT_TRUE(std::equal(in.coefCb[r / 2], in.coefCb[r / 2] + units, out.coefCb[r / 2]));
        ASSERT_TRUE(std::equal(in.coefCr[r / 2], in.coefCr[r / 2] + units, out.coefCr[r / 2]));
      }
    }
    EXPECT_EQ(JDEC_Get_Quality(decoder.get()), quality);
    EXPECT_EQ(Saved(decoder.get()), jfif);
    const Bytes theirs = Decoded_By_Djpeg(Scratch_Path("compress.jpg"));
    ASSERT_EQ(theirs.size(), bmp.size());
    for (const double psnr : Psnr(theirs, bmp)) EXPECT_GT(psnr, least) << quality;
  }
  std::remove(Scratch_Path("compress.jpg").c_str());
}

TEST_F(LibraryTest, DoubledRowsAreThePictureWithEachRowTwice) {
  Noise noise{6};
  const DecoderPtr encoder = Headless_Decoder(32, 16);
  Bytes half, full;
  for (int32_t y = 0; y < 8; ++y) {
    const Bytes row = noise.Some(96);
    half = Joined({half, row});
    full = Joined({full, row, row});
  }
  EXPECT_EQ(Compressed(encoder.get(), 60, half, 1, 1), Compressed(encoder.get(), 60, full, 1));
}

/** All that a compression leaves, and the picture that a later frame shows. */
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
    // Luma, Cb and Cr lie one behind another.
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
    // A doubled picture is half as high, and nothing behind it may be read.
    const int32_t rows = way & 2 ? height / 2 : height;
    Bytes pixels = noise.Some((size_t)(width * rows * 3));
    for (uint8_t& byte : pixels) byte = width % 3 ? byte : byte & 1 ? 255 : 0;
    const Compression plain(KernelPlain, width, height, pixels, given, way);
    for (const auto& [level, mask] : Test_Levels()) {
      ASSERT_TRUE(Compression(mask, width, height, pixels, given, way) == plain) << level << ' ' << width << 'x' << height;
    }
  }
}

TEST_F(LibraryTest, WhatPassesTheStoreIsRefused) {
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
