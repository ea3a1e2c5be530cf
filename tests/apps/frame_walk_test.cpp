#include "apps/velarto/frame_walk.h"

#include "support/streams.h"

namespace {

struct FrameWalkTest : LibraryTest {
  const Bytes sample = Read_File(VELARTO_SOURCE_DIR "/samples/street.vlr");
};

/** Offset and length of a frame. */
using Place = std::pair<int64_t, size_t>;

/** The frames of a stream that arrives in pieces of at most `largest` bytes. */
std::vector<Place> Walk_In_Pieces(const Bytes& stream, size_t largest, FrameWalk* walk) {
  Noise random{7};
  std::vector<Place> places;
  WalkedFrame frame;
  for (size_t at = 0; at < stream.size();) {
    const size_t count = std::min(stream.size() - at, 1 + random.Next() % largest);
    Walk_Add(walk, {&stream[at], count});
    at += count;
    while (Walk_Next(walk, &frame)) places.emplace_back(frame.offset, frame.bytes.size());
    EXPECT_LE(walk->held.size(), FrameStoreSize + largest + 1024);
  }
  Walk_End(walk);
  while (Walk_Next(walk, &frame)) places.emplace_back(frame.offset, frame.bytes.size());
  return places;
}

TEST_F(FrameWalkTest, AgreesWithTheLibraryOnTheSample) {
  FrameWalk walk;
  const auto places = Walk_In_Pieces(sample, 65536, &walk);
  ASSERT_GE(places.size(), 100u);
  const DecoderPtr decoder(JDEC_New(320, 240));
  Bytes polled(FrameStoreSize);
  size_t frame = 0;
  for (size_t at = 0; at < sample.size(); at += 4096) {
    JDEC_Receive_Data_2(decoder.get(), &sample[at], (uint32_t)std::min<size_t>(4096, sample.size() - at));
    uint32_t length = 0;
    for (; JDEC_Check_Decode_Frame(decoder.get(), 0, &polled[0], FrameStoreSize, &length, 0, 0, nullptr) == 1; ++frame) {
      ASSERT_LT(frame, places.size());
      ASSERT_EQ(places[frame].second, length);
      EXPECT_TRUE(std::equal(&polled[0], &polled[length], &sample[(size_t)places[frame].first])) << "frame " << frame;
    }
  }
  EXPECT_EQ(frame, places.size());
  EXPECT_EQ(Walk_Bytes(walk), (int64_t)sample.size());
  EXPECT_EQ(Walk_Skipped(walk), 18);  // What samples/make puts between frames.
}

Bytes Compact(size_t body) { return Compact_Frame(16, 16, 50, Bytes(body, 0x55)); }

TEST_F(FrameWalkTest, PiecesAndHostileBytesChangeNothing) {
  Bytes lying = Prefixed_Frame(Compact(40));
  lying[1] = 0xFF;                               // Announces 4 GB: skipped, together with the header in it.
  const Bytes stream = Joined({Bytes(40, 0xFF),  // The search looks at every second byte of such a run.
                               Compact(100),
                               {1, 0xFF},
                               Compact(30),  // Hidden by the FF before it.
                               Prefixed_Frame(Compact(500)),
                               lying,
                               Bytes(90, 7),
                               Compact(0),
                               Bytes(sample.begin(), sample.begin() + 120000),  // Ends inside a frame.
                               {0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0}});
  FrameWalk whole;
  const auto expected = Walk_In_Pieces(stream, stream.size(), &whole);
  ASSERT_GT(expected.size(), 5u);
  EXPECT_EQ(expected[0], Place(40, 112));
  EXPECT_EQ(expected[1], Place(40 + 112 + 2 + 42, 526));
  EXPECT_EQ(expected[2], Place(40 + 112 + 2 + 42 + 526 + 66 + 90, 12));
  for (const size_t largest : {1u, 2u, 3u, 17u, 600u, 5000u}) {
    FrameWalk walk;
    EXPECT_EQ(Walk_In_Pieces(stream, largest, &walk), expected) << "pieces of up to " << largest;
    EXPECT_EQ(Walk_Skipped(walk), Walk_Skipped(whole));
  }
}

TEST_F(FrameWalkTest, AStartWithoutAnEndIsSkipped) {
  const std::string mark = "JFIF";
  const auto jfif = std::search(sample.begin(), sample.end(), mark.begin(), mark.end()) - 6;
  Bytes start(jfif, jfif + 700);
  start.resize(FrameStoreSize + 1000, 0x11);
  FrameWalk full, ended;
  EXPECT_EQ(Walk_In_Pieces(Joined({start, Compact(64)}), 4096, &full), std::vector<Place>({{FrameStoreSize + 1000, 76}}));
  start.resize(300);  // Too short to be known as one.
  EXPECT_EQ(Walk_In_Pieces(Joined({start, Compact(64)}), 4096, &ended), std::vector<Place>({{300, 76}}));
}

}  // namespace
