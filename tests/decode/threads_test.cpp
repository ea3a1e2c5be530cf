// Decoders on threads of their own, each with its own stream; meant for the thread sanitizer above all.
#include "support/streams.h"

#include <thread>

namespace {

TEST_F(LibraryTest, DecodersOnManyThreadsKeepApart) {
  const TestFrame frames[] = {Load_Frame("tile-48x48-q50.jpg", 50), Load_Frame("tile-64x48-q75.jpg", 75),
                              Load_Frame("tile-96x64-q40.jpg", 40)};
  const Bytes pictures[] = {Picture_Of(frames[0]), Picture_Of(frames[1]), Picture_Of(frames[2])};
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
          Push(decoder.get(), i % 2 ? frames[which].jfif : frames[which].prefixed, &status);
          right[t] += Picture(decoder.get()) == pictures[which];
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
