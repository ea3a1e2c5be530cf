// Records and life of a decoder: layout, start values, and what is left when memory runs out.
#include "decode/buffers.h"
#include "support/streams.h"
#include "support/window.h"

namespace {

struct DecoderTest : LibraryTest {
  TestFrame small = Load_Frame("tile-48x48-q50.jpg", 50), large = Load_Frame("tile-96x64-q40.jpg", 40);
  ~DecoderTest() override { Screen_Remove(); }
};

TEST_F(DecoderTest, InitIsCounted) {
  const LONG before = jdecInitCount;
  EXPECT_EQ(JDEC_Init(), 1);
  EXPECT_EQ(JDEC_Init(), 1);
  EXPECT_EQ(jdecInitCount, before + 2);
  JDEC_Exit();
  JDEC_Exit();
  EXPECT_EQ(jdecInitCount, before);
  for (uint32_t i = 0; i < 32; ++i) EXPECT_EQ(bitMasks[i], (1u << i) - 1);
}

TEST_F(DecoderTest, PicturesLieInMemoryAsTold) {
  const DecoderPtr decoder(JDEC_New(53, 35));
  const JdecCodec& codec = *decoder->codec;
  const JdecRaster& raster = *codec.raster;
  EXPECT_EQ(raster.bitsPerPixel, 24);
  EXPECT_EQ(raster.pitch, 53 * 3);
  EXPECT_EQ(JDEC_get_decompressed_bitmap(decoder.get()), raster.rows[34]);
  for (int32_t y = 1; y < 35; ++y) EXPECT_EQ(raster.rows[y - 1], raster.rows[y] + raster.pitch);
  EXPECT_EQ(std::count(raster.rows[34], raster.rows[0] + raster.pitch, 0), 35 * raster.pitch);

  const JdecPlanes& planes = *codec.planes;
  EXPECT_EQ(
      (std::vector<int32_t>{planes.yWidth, planes.yHeight, planes.crWidth, planes.crHeight, planes.cbWidth, planes.cbHeight}),
      (std::vector<int32_t>{53, 35, 26, 17, 26, 17}));
  EXPECT_EQ(planes.cbRows[0], planes.yRows[34] + 53);
  EXPECT_EQ(planes.crRows[0], planes.cbRows[16] + 26);
  EXPECT_EQ(std::count(planes.yRows[0], planes.cbRows[0], 0), 53 * 35);
  EXPECT_EQ(std::count(planes.cbRows[0], planes.crRows[16] + 26, 127), 2 * 26 * 17);

  for (const auto& [plane, width, height] : {std::tuple{codec.coefY, 53, 35}, {codec.coefCb, 26, 17}, {codec.coefCr, 26, 17}}) {
    for (int32_t r = 0; r < height / 8; ++r) {
      const int32_t units = width / 8 * 64;
      EXPECT_EQ(std::count(plane[r], plane[r] + units, 0), units);
      EXPECT_GE(plane[r], r == 0 ? plane[0] : plane[r - 1] + units);
    }
  }
  EXPECT_EQ(decoder->ringFill, 0);
  EXPECT_EQ(decoder->ringEnd - decoder->ringStart, StreamBufferSize);
  EXPECT_EQ(decoder->dstRect.right * 1000 + decoder->dstRect.bottom, 53035);
}

TEST_F(DecoderTest, TablesAreRebuiltForAnotherQualityOnly) {
  const DecoderPtr decoder = Headless_Decoder(16, 16);
  decoder->codec->lumaQuant[0] = 99;
  Codec_Set_Quality(decoder->codec, 50);
  EXPECT_EQ(decoder->codec->lumaQuant[0], 99);
  Codec_Set_Quality(decoder->codec, 25);
  EXPECT_EQ(decoder->codec->lumaQuant[0], 32);
}

TEST_F(DecoderTest, FlushForgetsBytesAndDarkensThePicture) {
  const DecoderPtr decoder = Headless_Decoder(48, 48);
  Push(decoder.get(), small.compact);
  Push(decoder.get(), Bytes(small.compact.begin(), small.compact.end() - 1));
  JDEC_Flush(decoder.get());
  const Bytes dark = Picture(decoder.get());
  EXPECT_EQ(dark, Picture(Headless_Decoder(48, 48).get()));
  EXPECT_EQ(Push(decoder.get(), {small.compact.back()}), -1);
  EXPECT_EQ(Picture(decoder.get()), dark);
  EXPECT_EQ(Push(decoder.get(), small.compact), (int32_t)small.compact.size());
  EXPECT_EQ(Picture(decoder.get()), Picture_Of(small));
}

TEST_F(DecoderTest, NewLeavesNothingBehindWhenMemoryRunsOut) {
  const int32_t before = Screen_Objects_Alive();
  int32_t allocations = 0;
  for (DecoderPtr decoder; !decoder; ++allocations) {
    Screen_Fail(ScreenStep::Memory, allocations);
    decoder.reset(JDEC_New(64, 48));
    EXPECT_EQ(Screen_Objects_Alive() > before, decoder != nullptr) << allocations;
  }
  EXPECT_GT(allocations, 10);
  EXPECT_EQ(Screen_Objects_Alive(), before);
  Screen_Fail_Nothing();
  Screen_Fail(ScreenStep::CreateMutex);
  EXPECT_EQ(JDEC_New(64, 48), nullptr);
  EXPECT_EQ(Screen_Objects_Alive(), before);
}

TEST_F(DecoderTest, SizeChangeWithoutMemoryChangesNothing) {
  const Bytes smallPicture = Picture_Of(small), largePicture = Picture_Of(large);
  int32_t allocations = 0, refused = 1;
  while (refused) {
    const int32_t before = Screen_Objects_Alive();
    {
      const DecoderPtr decoder = Headless_Decoder(16, 16);
      Push(decoder.get(), small.jfif);
      const int32_t alive = Screen_Objects_Alive();
      Screen_Fail(ScreenStep::Memory, allocations++);
      Push(decoder.get(), large.compact);
      Screen_Fail_Nothing();
      refused = JDEC_Get_Quality(decoder.get()) == 50;
      EXPECT_EQ(Picture(decoder.get()), refused ? smallPicture : largePicture) << allocations;
      EXPECT_EQ(Screen_Objects_Alive(), alive) << allocations;
      EXPECT_EQ(decoder->width, decoder->codec->width);
      Push(decoder.get(), large.prefixed);
      EXPECT_EQ(Picture(decoder.get()), largePicture) << allocations;
      Push(decoder.get(), small.compact);
      EXPECT_EQ(Picture(decoder.get()), smallPicture) << allocations;
    }
    ASSERT_EQ(Screen_Objects_Alive(), before) << allocations;
  }
  EXPECT_GE(allocations, 5);  // Two pictures and three planes of coefficients.
}

TEST_F(DecoderTest, SizeChangeOfADisplayWithoutMemory) {
  const TestWindow window(32);
  const int32_t before = Screen_Objects_Alive();
  for (int32_t after = 0; after < 30; ++after) {
    {
      const DecoderPtr decoder(JDEC_New(48, 48));
      ASSERT_EQ(JDEC_Draw_Init(decoder.get(), window.handle), 1);
      Push(decoder.get(), small.compact);
      Screen_Fail(ScreenStep::Memory, after);
      Push(decoder.get(), large.compact);
      Screen_Fail_Nothing();
      const bool unchanged = decoder->width == 48;
      EXPECT_EQ(decoder->codec->width, decoder->width) << after;
      if (unchanged) {
        EXPECT_NE(decoder->display, nullptr) << after;
        EXPECT_EQ(JDEC_Get_Quality(decoder.get()), 50) << after;
        EXPECT_EQ(Picture(decoder.get()), Picture_Of(small)) << after;
      }
      Push(decoder.get(), large.jfif);
      EXPECT_EQ(Picture(decoder.get()), Picture_Of(large)) << after;
    }
    ASSERT_EQ(Screen_Objects_Alive(), before) << after;
  }
}

}  // namespace
