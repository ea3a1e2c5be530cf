// The ring: order of its bytes, full and empty, slowing the producer down, two threads.
#include "decode/ring.h"

#include "support/streams.h"

#include <chrono>
#include <thread>

namespace {

struct Ring : LibraryTest {
  const DecoderPtr decoder = Headless_Decoder(48, 48);
  Noise noise{11};

  int32_t Write(const Bytes& bytes) { return JDEC_write_decode_buffer(decoder.get(), bytes.data(), (int32_t)bytes.size()); }
  Bytes Read(int32_t length) {
    Bytes bytes((size_t)length);
    bytes.resize((size_t)Ring_Read(decoder.get(), bytes.data(), length));
    return bytes;
  }
  /** Checks the answer and gives the milliseconds that the call took. */
  int64_t Query(int32_t expected) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(JDEC_query_decode_buffer_count(decoder.get()), expected);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
  }
};

TEST_F(Ring, HoldsWhatFitsInOrderOverItsEnd) {
  const Bytes first = noise.Some(400000), second = noise.Some(300000), third = noise.Some(StreamBufferSize - 300000);
  EXPECT_EQ(Write(first), 400000);
  EXPECT_EQ(Read(400000), first);
  EXPECT_EQ(Write(second), 300000);  // Over the end,
  EXPECT_EQ(Write(third), (int32_t)third.size());
  EXPECT_EQ(decoder->ringWrite, decoder->ringRead);
  EXPECT_EQ(Write({1}), 0);  // and full.
  EXPECT_EQ(Read(StreamBufferSize + 1), Joined({second, third}));
  EXPECT_EQ(Read(1), Bytes());

  // Exactly up to the end, by both positions.
  const int32_t toEnd = (int32_t)(decoder->ringEnd - decoder->ringWrite);
  EXPECT_EQ(Write(noise.Some((size_t)toEnd)), toEnd);
  EXPECT_EQ(decoder->ringWrite, decoder->ringStart);
  Read(toEnd);
  EXPECT_EQ(decoder->ringRead, decoder->ringStart);
  EXPECT_EQ(JDEC_write_decode_buffer(decoder.get(), nullptr, 5) + JDEC_write_decode_buffer(decoder.get(), first.data(), -5), 0);
}

TEST_F(Ring, SlowsTheProducerDownAndHidesABacklog) {
  const Bytes bytes(StreamBufferSize);
  const auto fill_to = [&](int32_t free) {
    decoder->ringFill = 0;
    Write(Bytes((size_t)(StreamBufferSize - free)));
  };
  EXPECT_LT(Query(StreamBufferSize), 50);
  for (const auto& [free, least] : {std::pair{104857, 0}, {104856, 50}, {65536, 50}, {65535, 150}, {1, 150}}) {
    fill_to(free);
    EXPECT_GE(Query(free), least) << free;
  }
  fill_to(StreamBufferSize - 393217);
  Read(0);
  EXPECT_EQ(decoder->hidden, 1);
  Read(1);  // The backlog is measured before bytes are taken.
  EXPECT_EQ(decoder->hidden, 1);
  Read(1);
  EXPECT_EQ(decoder->hidden, 0);
}

TEST_F(FramesTest, RingBetweenTwoThreadsLosesNothing) {
  const DecoderPtr decoder = Headless_Decoder(48, 48);
  const Bytes stream = Noise{5}.Some(6000000);
  std::thread producer([&] {
    Noise pieces{6};
    for (size_t at = 0; at < stream.size();) {
      const auto offer = (int32_t)std::min<size_t>(stream.size() - at, (size_t)pieces.Between(1, 20000));
      if (JDEC_query_decode_buffer_count(decoder.get()) == 0) continue;
      at += (size_t)JDEC_write_decode_buffer(decoder.get(), &stream[at], offer);
    }
  });
  Bytes received, piece(65536);
  Noise pieces{7};
  int32_t backlogs = 0;
  while (received.size() < stream.size()) {
    // Slow at first, so that the ring runs full.
    if (received.size() < 100000) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const int32_t count = Ring_Read(decoder.get(), piece.data(), pieces.Between(1, received.size() < 100000 ? 2000 : 65536));
    received.insert(received.end(), piece.begin(), piece.begin() + count);
    backlogs += decoder->hidden;
    if (count == 0) std::this_thread::yield();
  }
  producer.join();
  EXPECT_EQ(received, stream);
  EXPECT_GT(backlogs, 0);
  EXPECT_EQ(decoder->hidden, 0);
}

}  // namespace
