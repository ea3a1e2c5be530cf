// Making, flushing, resizing and freeing a decoder: memory layout, first values, and allocations that fail.
#include "platform/portable/rig.h"
#include "support/streams.h"
#include "support/window.h"

namespace {

using DecoderTest = FramesTest;

TEST_F(DecoderTest, InitIsCounted) {
  const LONG before = jdecInitCount;
  for (LONG i = 1; i <= 2; ++i) EXPECT_EQ(JDEC_Init() + jdecInitCount, 1 + before + i);
  for (LONG i = 1; i >= 0; --i) {
    JDEC_Exit();
    EXPECT_EQ(jdecInitCount, before + i);
  }
}

TEST_F(DecoderTest, PicturesHaveTheirLayoutInMemory) {
  const DecoderPtr decoder(JDEC_New(53, 35));
  const JdecCodec& codec = *decoder->codec;
  const JdecRaster& raster = *codec.raster;
  const JdecPlanes& planes = *codec.planes;
  EXPECT_EQ(decoder->dstRect.right * 1000 + decoder->dstRect.bottom, 53035);
  EXPECT_EQ(JDEC_get_decompressed_bitmap(decoder.get()), raster.rows[34]);
  for (int32_t y = 1; y < 35; ++y) EXPECT_EQ(raster.rows[y - 1], raster.rows[y] + 53 * 3);
  EXPECT_EQ(std::count(raster.rows[34], raster.rows[0] + raster.pitch, 0), 35 * 53 * 3);
  // Luma, Cb and Cr follow one another, and are dark.
  EXPECT_EQ(planes.crRows[16] + 26, planes.yRows[0] + 53 * 35 + 2 * 26 * 17);
  EXPECT_EQ(std::count(planes.yRows[0], planes.cbRows[0], 0), 53 * 35);
  EXPECT_EQ(std::count(planes.cbRows[0], planes.crRows[16] + 26, 127), 2 * 26 * 17);
  for (const auto& [plane, width, height] : {std::tuple{codec.coefY, 53, 35}, {codec.coefCb, 26, 17}, {codec.coefCr, 26, 17}}) {
    for (int32_t r = 0; r < height / 8; ++r) EXPECT_EQ(std::count(plane[r], plane[r] + width / 8 * 64, 0), width / 8 * 64);
  }
}

TEST_F(DecoderTest, FlushForgetsBytesAndDarkensThePicture) {
  const DecoderPtr decoder = Headless_Decoder(48, 48);
  Push(decoder.get(), small.compact);
  Push(decoder.get(), Bytes(small.compact.begin(), small.compact.end() - 1));
  JDEC_Flush(decoder.get());
  EXPECT_EQ(Push(decoder.get(), {small.compact.back()}), -1);
  EXPECT_EQ(Current_Picture(decoder.get()), Current_Picture(Headless_Decoder(48, 48).get()));
  EXPECT_EQ(Push(decoder.get(), small.compact), (int32_t)small.compact.size());
  EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(small));

  // The search for an end marker starts again too: that of the next frame lies before the place it had reached.
  const Bytes unfinished(large.jfif.begin(), large.jfif.end() - 1);
  ASSERT_GT(unfinished.size(), small.jfif.size());
  EXPECT_EQ(Push(decoder.get(), unfinished), -1);
  JDEC_Flush(decoder.get());
  EXPECT_EQ(Push(decoder.get(), small.jfif), (int32_t)small.jfif.size());
  Store(decoder.get(), unfinished);
  EXPECT_EQ(Poll(decoder.get()), 2);
  JDEC_Flush(decoder.get());
  Store(decoder.get(), small.jfif);
  EXPECT_EQ(Poll(decoder.get()), 1);
  EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(small));
}

TEST_F(DecoderTest, NewFreesEverythingWhenMemoryRunsOut) {
  const int32_t before = Rig_Objects_Alive();
  int32_t allocations = 0;
  for (DecoderPtr decoder; !decoder; ++allocations) {
    Rig_Fail(RigStep::Memory, allocations);
    decoder.reset(JDEC_New(64, 48));
    EXPECT_EQ(Rig_Objects_Alive() > before, decoder != nullptr) << allocations;
  }
  EXPECT_GT(allocations, 10);
  Rig_Fail_Nothing();
  Rig_Fail(RigStep::CreateMutex);
  EXPECT_EQ(JDEC_New(64, 48), nullptr);
  EXPECT_EQ(Rig_Objects_Alive(), before);
  Rig_Fail_Nothing();
}

TEST_F(DecoderTest, SizeChangeWithoutMemoryChangesNothing) {
  const Bytes smallPicture = Picture_Of(small), largePicture = Picture_Of(large);
  for (const bool shown : {false, true}) {
    const TestWindow window(32);
    const int32_t before = Rig_Objects_Alive();
    int32_t refusals = 0;
    for (int32_t after = 0; after < 30; ++after) {
      SCOPED_TRACE(after);
      {
        const DecoderPtr decoder = Shown_Decoder(shown ? window.handle : nullptr, 16, 16);
        Push(decoder.get(), small.jfif);
        const int32_t alive = Rig_Objects_Alive();
        Rig_Fail(RigStep::Memory, after);
        Push(decoder.get(), large.compact);
        Rig_Fail_Nothing();
        const bool refused = JDEC_Get_Quality(decoder.get()) == 50;
        refusals += refused;
        EXPECT_EQ(Current_Picture(decoder.get()), refused ? smallPicture : largePicture);
        // Without memory for the display alone the new size stands, and the next change makes a display again.
        if (refused || !shown) {
          EXPECT_EQ(Rig_Objects_Alive(), alive);
          EXPECT_EQ(decoder->display != nullptr, shown);
        }
        EXPECT_EQ(decoder->width, decoder->codec->width);
        Push(decoder.get(), large.prefixed);
        EXPECT_EQ(Current_Picture(decoder.get()), largePicture);
        Push(decoder.get(), small.compact);
        EXPECT_EQ(Current_Picture(decoder.get()), smallPicture);
        EXPECT_EQ(decoder->display != nullptr, shown);
      }
      ASSERT_EQ(Rig_Objects_Alive(), before);
    }
    EXPECT_GE(refusals, 5);  // Two pictures and three planes of coefficients.
    EXPECT_LT(refusals, 30);
  }
}

}  // namespace
