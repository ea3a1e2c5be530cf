#include "apps/velarto/frame_walk.h"

#include "decode/decoder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

using Bytes = std::vector<uint8_t>;

static Bytes Read_Sample() {
  std::ifstream file(VELARTO_SOURCE_DIR "/samples/street.vlr", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/** Offset and length of a frame. */
using Place = std::pair<int64_t, size_t>;

/** The frames of a stream that arrives in pieces of at most `largest` bytes. */
static std::vector<Place> Walk_In_Pieces(const Bytes& stream, size_t largest, FrameWalk* walk) {
  std::mt19937 random(7);
  std::vector<Place> places;
  WalkedFrame frame;
  for (size_t at = 0; at < stream.size();) {
    const size_t count = std::min(stream.size() - at, 1 + random() % largest);
    Walk_Add(walk, {&stream[at], count});
    at += count;
    while (Walk_Next(walk, &frame)) places.emplace_back(frame.offset, frame.bytes.size());
    EXPECT_LE(walk->held.size(), FrameStoreSize + largest + 1024);
  }
  Walk_End(walk);
  while (Walk_Next(walk, &frame)) places.emplace_back(frame.offset, frame.bytes.size());
  return places;
}

/** The frames that the library's polling path takes out of the stream. */
static std::vector<Bytes> Poll_Frames(const Bytes& stream) {
  JDEC_Init();
  JdecDecoder* const decoder = JDEC_New(320, 240);
  std::vector<Bytes> frames;
  Bytes frame(FrameStoreSize);
  for (size_t at = 0; at < stream.size(); at += 4096) {
    JDEC_Receive_Data_2(decoder, &stream[at], static_cast<uint32_t>(std::min<size_t>(4096, stream.size() - at)));
    uint32_t length = 0;
    while (JDEC_Check_Decode_Frame(decoder, 0, frame.data(), FrameStoreSize, &length, 0, 0, nullptr) == 1) {
      frames.emplace_back(frame.begin(), frame.begin() + length);
    }
  }
  JDEC_Free(decoder);
  JDEC_Exit();
  return frames;
}

TEST(FrameWalk, AgreesWithTheLibraryOnTheSample) {
  const Bytes stream = Read_Sample();
  FrameWalk walk;
  const auto places = Walk_In_Pieces(stream, 65536, &walk);
  const auto frames = Poll_Frames(stream);
  ASSERT_GE(places.size(), 100u);
  ASSERT_EQ(places.size(), frames.size());
  for (size_t i = 0; i < frames.size(); ++i) {
    const auto start = stream.begin() + places[i].first;
    EXPECT_EQ(Bytes(start, start + static_cast<int64_t>(places[i].second)), frames[i]) << "frame " << i;
  }
  EXPECT_EQ(Walk_Bytes(walk), static_cast<int64_t>(stream.size()));
  EXPECT_EQ(Walk_Skipped(walk), 18);  // What samples/make strews between frames.
}

static void Append(Bytes* stream, const Bytes& bytes) { std::copy(bytes.begin(), bytes.end(), std::back_inserter(*stream)); }

static Bytes Compact(uint16_t body) {
  const uint8_t head[12] = {0xFF, 0xD8, static_cast<uint8_t>(body), static_cast<uint8_t>(body >> 8), 16, 0, 16, 0, 50, 0,
                            0xFF, 0xD9};
  Bytes frame(sizeof head + body, 0x55);
  std::copy(std::begin(head), std::end(head), frame.begin());
  return frame;
}

static Bytes Prefixed(uint8_t lengthBits24, const Bytes& compact) {
  const uint8_t prefix[14] = {0xF6, lengthBits24, 0xFF, 0, 0xF9, 0, 0xDD, 0, 0, 0, 0, 0, 0xC5, 0};
  Bytes frame(std::begin(prefix), std::end(prefix));
  std::copy(compact.begin(), compact.end(), std::back_inserter(frame));
  return frame;
}

TEST(FrameWalk, PiecesAndHostileBytesChangeNothing) {
  Bytes stream(40, 0xFF);  // A search looks at every second byte of such a run.
  Append(&stream, Compact(100));
  Append(&stream, {1, 0xFF});
  Append(&stream, Compact(30));  // Hidden by the FF ahead of it.
  Append(&stream, Prefixed(0, Compact(500)));
  Append(&stream, Prefixed(0xFF, Compact(40)));  // Announces 4 GB: given up, and the head in it with it.
  Append(&stream, Bytes(90, 7));
  Append(&stream, Compact(0));
  const Bytes sample = Read_Sample();
  const Bytes jfif(sample.begin(), sample.begin() + 120000);  // Ends inside a frame.
  Append(&stream, jfif);
  Append(&stream, {0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0});  // A start, cut off.

  FrameWalk whole;
  const auto expected = Walk_In_Pieces(stream, stream.size(), &whole);
  ASSERT_GT(expected.size(), 5u);
  EXPECT_EQ(expected[0], Place(40, 112));
  EXPECT_EQ(expected[1], Place(40 + 112 + 2 + 42, 526));
  for (const size_t largest : {1u, 2u, 3u, 17u, 600u, 5000u}) {
    FrameWalk walk;
    EXPECT_EQ(Walk_In_Pieces(stream, largest, &walk), expected) << "pieces of up to " << largest;
    EXPECT_EQ(Walk_Skipped(walk), Walk_Skipped(whole));
  }
}

TEST(FrameWalk, AStartWithoutAnEndIsGivenUp) {
  const Bytes sample = Read_Sample();
  const std::string mark = "JFIF";
  const auto jfif = std::search(sample.begin(), sample.end(), mark.begin(), mark.end()) - 6;
  Bytes stream(jfif, jfif + 700);
  stream.resize(FrameStoreSize + 1000, 0x11);
  Append(&stream, Compact(64));
  FrameWalk walk;
  EXPECT_EQ(Walk_In_Pieces(stream, 4096, &walk), std::vector<Place>({{FrameStoreSize + 1000, 76}}));
}
