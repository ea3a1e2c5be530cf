// What the encoder writes, read by the decoder and by djpeg.
#include "kernels/cpu.h"
#include "support/djpeg.h"

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
  kernels = Kernels_Select(KernelPlain);  // The plain pipeline keeps the coefficients.
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

}  // namespace
