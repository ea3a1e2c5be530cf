// Pictures of another encoder, decoded here and by djpeg, and on many threads.
#include "support/djpeg.h"
#include "support/levels.h"

#include <thread>

namespace {

TEST_F(LibraryTest, ScenesLookAsAnotherDecoderShowsThem) {
  // Of blue, green and red; green is one brighter here where chroma is neutral.
  const struct {
    const char* name;
    int32_t quality;
    std::array<double, 3> least;
  } scenes[] = {{"scene-q25.jpg", 25, {57, 51, 59}}, {"scene-q50.jpg", 50, {57, 50, 58}}, {"scene-q75.jpg", 75, {54, 49, 55}}};
  const DecoderPtr decoder = Headless_Decoder(16, 16);  // The last two scenes have the same size: nothing of one may stay.
  for (const auto& [name, quality, least] : scenes) {
    const TestFrame frame = Load_Frame(name, quality);
    EXPECT_EQ(Push(decoder.get(), frame.jfif), (int32_t)frame.jfif.size());
    EXPECT_EQ(JDEC_Get_Quality(decoder.get()), quality);
    const Bytes ours = Current_Picture(decoder.get()), theirs = Decoded_By_Djpeg(Data_Path(name));
    ASSERT_EQ(ours.size(), theirs.size()) << "needs djpeg";
    const std::array<double, 3> psnr = Psnr(ours, theirs);
    for (size_t i = 0; i < 3; ++i) EXPECT_GT(psnr[i], least[i]) << name << ", channel " << i;
    EXPECT_EQ(Picture_Of(frame), ours) << "compact and JFIF form differ";
  }
}

/** A decoder is used by one thread at a time. All decoders share the tables, the hidden text of the last frame and the state of
 *  the motion area, which any thread may read and change. Each thread may start and end the library for itself. */
struct Threads : FramesTest {
  const TestFrame* const frames[3] = {&small, &middle, &large};
  const Bytes pictures[3] = {Picture_Of(small), Picture_Of(middle), Picture_Of(large)}, pixels = Noise{5}.Some(32 * 32 * 3);

  /** A decoder's life on thread `t`. Gives how many of 17 results are right. */
  int Live(size_t t) const {
    const DecoderPtr decoder = Headless_Decoder(32, 32);
    int right = !Compressed(decoder.get(), 50, pixels, t % 2).empty();
    for (size_t i = 0; i < 16; ++i) {
      const size_t which = (t + i / 4) % 3;  // Keeps a size for a while, then changes it.
      const Bytes& bytes = frames[which]->In_Form(i % 3);
      int32_t status = 1;
      if (t % 2) Store(decoder.get(), bytes), Poll(decoder.get());
      if (t % 2 == 0) Push(decoder.get(), bytes, &status);
      right += Current_Picture(decoder.get()) == pictures[which];
      uint8_t text[1024];
      JDEC_read_watermark_string(decoder.get(), text, sizeof text);
      JDEC_enable_MD(decoder.get(), (int32_t)i % 4);
      JDEC_set_MD_color((int32_t)i % 2);
    }
    JDEC_Flush(decoder.get());
    return right;
  }
  std::vector<int> On_Eight_Threads(bool startedByEach) const {
    std::vector<int> right(8);
    std::vector<std::thread> threads;
    for (size_t t = 0; t < right.size(); ++t) {
      threads.emplace_back([&, t] {
        for (int lives = 0; lives < 3; ++lives) {
          if (startedByEach) JDEC_Init();
          right[t] += Live(t);
          if (startedByEach) JDEC_Exit();
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    return right;
  }
};

TEST_F(Threads, KeepTheirDecodersApart) {
  const std::vector<int> allRight(8, 3 * 17);
  for (const auto& [level, mask] : Test_Levels()) {
    kernels = Kernels_Select(mask);
    EXPECT_EQ(On_Eight_Threads(false), allRight) << level;
  }
  JDEC_Exit();
  EXPECT_EQ(On_Eight_Threads(true), allRight);
  JDEC_Init();
}

}  // namespace
