// Chunks of any size into both paths; the bit rate; the recording.
#include "decode/receive.h"

#include "display/context.h"
#include "support/streams.h"
#include "support/window.h"

#include <cstdio>

namespace {

struct Stream {
  Bytes bytes;
  std::vector<size_t> starts;  ///< Of the frames, and the end.
  std::vector<Bytes> frames, pictures;
};

struct Receiver : FramesTest {
  const DecoderPtr decoder = Headless_Decoder(16, 16);

  /** The three forms in turn, sizes and qualities changing, with that text ahead of some. */
  Stream Mixed_Stream(const std::string& text) {
    const TestFrame* const kinds[] = {&small, &middle, &large};
    Stream stream;
    for (size_t i = 0; i < 18; ++i) {
      if (i % 4 == 1) stream.bytes.insert(stream.bytes.end(), text.begin(), text.end());
      const TestFrame& frame = *kinds[i / 2 % 3];
      stream.frames.push_back(i % 3 == 0 ? frame.jfif : i % 3 == 1 ? frame.compact : frame.prefixed);
      stream.pictures.push_back(Picture_Of(frame));
      stream.starts.push_back(stream.bytes.size());
      stream.bytes.insert(stream.bytes.end(), stream.frames.back().begin(), stream.frames.back().end());
    }
    stream.starts.push_back(stream.bytes.size());
    return stream;
  }
};

TEST_F(Receiver, PollingFindsEveryFrameWhateverTheChunks) {
  const Stream stream = Mixed_Stream("");  // Bytes of no frame would take the beginning of the next one with them.
  Noise noise{21};
  for (const int32_t largest : {1, 7, 40, 700, 5000, (int32_t)stream.bytes.size()}) {
    std::vector<Bytes> frames, pictures;
    Bytes frame;
    for (size_t at = 0, count; at < stream.bytes.size(); at += count) {
      count = std::min(stream.bytes.size() - at, (size_t)noise.Between(largest > 5000 ? largest : 1, largest));
      JDEC_Receive_Data_2(decoder.get(), &stream.bytes[at], (uint32_t)count);
      while (Poll(decoder.get(), &frame) == 1) {
        pictures.push_back(Picture(decoder.get()));
        frames.push_back(frame);
      }
    }
    EXPECT_TRUE(pictures == stream.pictures && frames == stream.frames) << largest;
  }
}

TEST_F(Receiver, PushingFindsEveryFrameWhoseHeadComesInOnePiece) {
  const Stream stream = Mixed_Stream("\r\n--frame\r\nContent-Type: image/jpeg\r\n\r\n");
  Noise noise{22};
  for (int round = 0; round < 20; ++round) {
    std::vector<Bytes> pictures;
    size_t at = 0;
    for (size_t i = 0; i < stream.frames.size(); ++i) {  // Cut a few times behind each head: a chunk completes one frame at most.
      for (size_t cut = stream.starts[i] + (i % 3 == 0 ? 625 : 26); at < stream.starts[i + 1]; at = cut) {
        cut = std::min(stream.starts[i + 1], cut + (size_t)noise.Between(0, 900));
        const int32_t result = JDEC_Receive_Data(decoder.get(), (int32_t)(cut - at), &stream.bytes[at], nullptr);
        if (result != -1) pictures.push_back(Picture(decoder.get()));
      }
    }
    EXPECT_TRUE(pictures == stream.pictures) << round;
  }
}

TEST_F(Receiver, StartAtTheEndOfAFullBufferIsKept) {
  const Bytes bytes = Joined({Bytes(StreamBufferSize - 100, 'x'), small.jfif});
  JDEC_Receive_Data_2(decoder.get(), bytes.data(), StreamBufferSize);
  EXPECT_EQ(Poll(decoder.get()), 2);
  JDEC_Receive_Data_2(decoder.get(), &bytes[StreamBufferSize], (uint32_t)(bytes.size() - StreamBufferSize));
  EXPECT_EQ(Poll(decoder.get()), 1);
  EXPECT_EQ(Picture(decoder.get()), Picture_Of(small));
}

TEST_F(Receiver, NoDataAddsNothing) {
  EXPECT_EQ(JDEC_Receive_Data(nullptr, 4, small.jfif.data(), nullptr), -1);
  EXPECT_EQ(JDEC_Receive_Data(decoder.get(), 4, nullptr, nullptr), -1);
  for (const int32_t length : {0, INT32_MIN}) EXPECT_EQ(JDEC_Receive_Data(decoder.get(), length, small.jfif.data(), nullptr), -1);
  EXPECT_EQ(JDEC_Receive_Data_2(decoder.get(), nullptr, 5), 0);
  EXPECT_EQ(JDEC_Receive_Data_2(decoder.get(), small.jfif.data(), UINT32_MAX), 0);
  EXPECT_EQ(decoder->assemblyFill + decoder->statsBits[0], 0);
}

TEST_F(Receiver, BitRateIsReportedEveryThreeSeconds) {
  const TestWindow window(32);
  const DecoderPtr shown(JDEC_New(48, 48));
  JDEC_Draw_Init(shown.get(), window.handle);
  const struct {
    uint32_t tick;
    size_t bytes;
    const char* text;
  } steps[] = {{1000, 1000, ""},
               {4000, 5250, ""},             // Not yet: 3000 ms have passed, and no more.
               {4001, 7000, "16.66 bps\n"},  // 50000 bits in 3001 ms: the most for this unit.
               {7001, 1, "16.66 bps\n"},     //
               {7002, 1, "9.33 Kb\n"},       // The other slot, 7001 bytes, since the first data.
               {10003, 1, "5.55 Kb\n"},      // The first slot goes on where it was, with 6251.
               {500, 1, "5.55 Kb\n"},        // The clock began anew.
               {3501, 1, "18.67 Kb\n"}};     // 7003 bytes in 3001 ms.
  for (const auto& [tick, bytes, text] : steps) {
    Screen_Set_Tick(tick);
    Push(shown.get(), Bytes(bytes, 'x'));
    EXPECT_STREQ(shown->display->osdText, text) << tick;
  }
  Screen_Real_Time();
}

struct Recording : Receiver {
  const std::string path = testing::TempDir() + "velarto-recording-test.vlr";
  void Start() {
    decoder->recordFile = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(decoder->recordFile, INVALID_HANDLE_VALUE);
    decoder->recordState = RecordWaiting;
  }
  Bytes Finish() {
    if (decoder->recordFile) CloseHandle(decoder->recordFile);
    decoder->recordFile = nullptr;
    return Read_File(path);
  }
  ~Recording() override {
    Screen_Remove();
    remove(path.c_str());
  }
};

TEST_F(Recording, BeginsWithTheFirstFrameAndSkipsWhatTheCameraMarks) {
  const Bytes noise(100, 'n'), marked = Prefixed_Frame(small.compact, 0x08), unmarked = Prefixed_Frame(small.compact, 0xF7);
  Start();
  Push(decoder.get(), noise);
  EXPECT_EQ(decoder->recordState, RecordWaiting);
  Push(decoder.get(), Joined({noise, small.prefixed}));
  EXPECT_EQ(decoder->recordState, RecordWriting);
  // The first mark is not known yet when its chunk is written; a frame without a prefix lets the next one through.
  for (const Bytes& chunk : {noise, marked, small.compact, marked, unmarked, small.jfif}) Push(decoder.get(), chunk);
  EXPECT_EQ(Finish(), Joined({small.prefixed, noise, marked, marked, small.jfif}));
}

TEST_F(Recording, LargeChunkIsOneWrite) {
  Start();
  const Bytes chunk = Joined({small.jfif, Bytes(1200000, 'x'), small.compact});
  const int32_t calls = Screen_Calls(ScreenStep::WriteFile);
  EXPECT_EQ(Push(decoder.get(), chunk), (int32_t)chunk.size());
  EXPECT_EQ(Screen_Calls(ScreenStep::WriteFile), calls + 1);
  EXPECT_EQ(decoder->statsBits[0], 8.0 * (double)chunk.size());
  EXPECT_EQ(Finish(), chunk);
}

TEST_F(Recording, EndsWithAWriteThatFailsOrFallsShort) {
  for (const ScreenStep step : {ScreenStep::WriteFile, ScreenStep::ShortWrite}) {
    const int32_t before = Screen_Objects_Alive();
    Start();
    Push(decoder.get(), small.compact);
    Screen_Fail(step);
    JDEC_Flush(decoder.get());
    EXPECT_EQ(Push(decoder.get(), small.jfif), (int32_t)small.jfif.size());
    Screen_Fail_Nothing();
    EXPECT_EQ(decoder->recordFile, nullptr);
    EXPECT_EQ(decoder->recordState, RecordOff);
    EXPECT_EQ(Screen_Objects_Alive(), before);
    EXPECT_EQ(Picture(decoder.get()), Picture_Of(small));
  }
}

}  // namespace
