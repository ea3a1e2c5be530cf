// Pictures of another encoder, decoded here and by djpeg, and on many threads.
#include "support/djpeg.h"

#include <thread>

namespace {

TEST_F(LibraryTest, ScenesLookAsAnotherDecoderShowsThem) {
  // Of blue, green and red; green is one brighter here where chroma is neutral.
  const struct {
    const char* name;
    int32_t quality;
    std::array<double, 3> least;
  } scenes[] = {{"scene-q25.jpg", 25, {57, 51, 59}}, {"scene-q50.jpg", 50, {57, 50, 58}}, {"scene-q75.jpg", 75, {54, 49, 55}}};
  const DecoderPtr decoder = Headless_Decoder(16, 16);  // The last two scenes have one size: nothing of the first may stay.
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

TEST_F(FramesTest, DecodersOnManyThreadsKeepApart) {
  const TestFrame* const frames[] = {&small, &middle, &large};
  const Bytes pictures[] = {Picture_Of(small), Picture_Of(middle), Picture_Of(large)};
  std::vector<int> right(6);
  std::vector<std::thread> threads;
  for (size_t t = 0; t < right.size(); ++t) {
    threads.emplace_back([&, t] {
      JDEC_Init();
      for (size_t life = 0; life < 2; ++life) {
        const DecoderPtr decoder = Headless_Decoder(32, 32);
        for (size_t i = 0; i < 30; ++i) {
          const size_t which = (t + i / 4) % 3;  // Keeps a size for a while, then changes it.
          int32_t status = 1;
          Push(decoder.get(), i % 2 ? frames[which]->jfif : frames[which]->prefixed, &status);
          right[t] += Current_Picture(decoder.get()) == pictures[which];
        }
        JDEC_Flush(decoder.get());
      }
      JDEC_Exit();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, std::vector<int>(6, 60));
}

}  // namespace
