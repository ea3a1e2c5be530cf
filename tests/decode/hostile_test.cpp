// Streams with false lengths, cut-off frames or noise: the decoder survives them and finds the next good frame.
#include "platform/portable/rig.h"
#include "support/resident.h"
#include "support/streams.h"
#include "support/window.h"

namespace {

struct Hostile : FramesTest {
  const Bytes picture = Picture_Of(small);
  const std::vector<const Bytes*> forms = {&middle.jfif, &middle.compact, &middle.prefixed};
  DecoderPtr decoder = Headless_Decoder(16, 16);

  /** Pushes good frames until one is decoded. Gives how many that took; 0 if two buffers full of them are not enough. */
  size_t Frames_Until_Shown() {
    for (size_t i = 1; i <= 2 * StreamBufferSize / small.jfif.size(); ++i) {
      Push(decoder.get(), small.jfif);
      if (Current_Picture(decoder.get()) == picture) return i;
    }
    return 0;
  }
};

TEST_F(Hostile, FramesCutOffAnywhere) {
  for (const Bytes* form : forms) {
    for (size_t length = 0; length < form->size(); ++length) {
      JDEC_Flush(decoder.get());
      Push(decoder.get(), Bytes(form->begin(), form->begin() + (ptrdiff_t)length));
      // The missing bytes are taken from the next frames.
      ASSERT_TRUE(Frames_Until_Shown() - 1 < 4) << length << " of " << form->size();
    }
  }
}

TEST_F(Hostile, HeadersThatAnnounceTooMuch) {
  Push(decoder.get(), middle.compact);
  const Bytes shown = Current_Picture(decoder.get());
  const int32_t alive = Rig_Objects_Alive();
  for (const auto& [width, height] : {std::pair{65535, 65535}, {0, 48}, {64, 0}, {65535, 520}}) {
    const Bytes frame = Compact_Frame(width, height, 90, Bytes(20, 0x28));
    EXPECT_EQ(Push(decoder.get(), frame), (int32_t)frame.size());
    EXPECT_EQ(JDEC_Get_Quality(decoder.get()), 75) << width << " by " << height;
    EXPECT_EQ(Current_Picture(decoder.get()), shown);
  }
  EXPECT_EQ(Rig_Objects_Alive(), alive);
  for (const auto& [byte1, byte3] : {std::pair{0xFF, 0xFF}, {0x7F, 0xFF}, {0x80, 0}, {1, 0}, {0, 8}}) {  // 4 GB to 512 KB.
    Bytes frame = middle.prefixed;
    frame[1] = (uint8_t)byte1;
    frame[3] = (uint8_t)byte3;
    EXPECT_EQ(Push(decoder.get(), frame), -1);
    EXPECT_EQ(Frames_Until_Shown(), 1u);
    JDEC_Flush(decoder.get());
  }
}

TEST_F(Hostile, MemoryOfTheLargestPictures) {
  const TestWindow window(32);
  constexpr int64_t most = int64_t{16} * MaxMacroblocks * 256 + 4000000;
  for (const HWND shown : {HWND{nullptr}, window.handle}) {
    for (const auto& [width, height] : {std::pair{8192, 4000}, {65535, 500}, {500, 65535}, {65535, 1}, {1, 65535}}) {
      const int64_t before = Resident_Bytes();
      ASSERT_GT(before, 0);
      const DecoderPtr huge = Shown_Decoder(shown, 16, 16);
      Push(huge.get(), Compact_Frame(width, height, 90, Bytes(20, 0x28)));
      int32_t gotWidth = 0, gotHeight = 0;
      JDEC_get_size(huge.get(), &gotWidth, &gotHeight);
      ASSERT_TRUE(gotWidth == width && gotHeight == height);
      EXPECT_EQ(huge->display != nullptr, shown != nullptr) << width << " by " << height;
      EXPECT_LE(Resident_Bytes() - before, most) << width << " by " << height << (shown ? " shown" : "");
    }
  }
}

TEST_F(Hostile, JfifStartWithoutAnEnd) {
  const Bytes endless = Joined({Bytes(middle.jfif.begin(), middle.jfif.begin() + 623), Bytes(1 << 20, 0x55)});
  for (const size_t chunk : {size_t{1000}, size_t{65536}, endless.size()}) {
    decoder = Headless_Decoder(16, 16);
    const DecoderPtr polling = Headless_Decoder(16, 16);
    for (size_t at = 0; at < endless.size(); at += chunk) {
      const size_t count = std::min(chunk, endless.size() - at);
      JDEC_Receive_Data(decoder.get(), (int32_t)count, &endless[at], nullptr);
      JDEC_Receive_Data_2(polling.get(), &endless[at], (uint32_t)count);
      EXPECT_NE(Poll(polling.get()), 1);
    }
    EXPECT_EQ(Frames_Until_Shown(), 1u) << chunk;
    Store(polling.get(), small.compact);
    EXPECT_EQ(Poll(polling.get()), 1) << chunk;
    EXPECT_EQ(Current_Picture(polling.get()), picture) << chunk;
  }
}

TEST_F(Hostile, NoiseOnBothPaths) {
  Noise noise{98};
  for (int round = 0; round < 300; ++round) {
    Bytes bytes = noise.Some((size_t)noise.Between(1, 9000));
    for (uint8_t& byte : bytes) {
      if (noise.Next() % 4 == 0) byte = "\xFF\xFF\xFF\xD8\xD9\xD8\xE0\x00"[noise.Next() % 8];
    }
    if (round % 3 == 0)
      bytes.insert(bytes.begin() + noise.Between(0, (int32_t)bytes.size()), small.jfif.begin(), small.jfif.end());
    Push(decoder.get(), bytes);
    Store(decoder.get(), bytes);
    Poll(decoder.get());
  }
  EXPECT_NE(Frames_Until_Shown(), 0u);
}

}  // namespace
