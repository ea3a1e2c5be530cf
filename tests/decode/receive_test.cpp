// Chunks of any size into both paths; the bit rate; the recording.
#include "decode/receive.h"

#include "display/context.h"
#include "support/streams.h"
#include "support/window.h"

#include <cstdio>
#include <numeric>

namespace {

struct Stream {
  Bytes bytes;
  std::vector<size_t> starts;  ///< Of the frames.
  std::vector<size_t> heads;   ///< Bytes that must come in one piece on the pushing path.
  std::vector<Bytes> pictures;
};

/** The three forms in turn, sizes and qualities changing, with that text ahead of some. */
Stream Mixed_Stream(const std::string& text) {
  const TestFrame frames[] = {Load_Frame("tile-48x48-q50.jpg", 50), Load_Frame("tile-64x48-q75.jpg", 75),
                              Load_Frame("tile-96x64-q40.jpg", 40)};
  const Bytes pictures[] = {Picture_Of(frames[0]), Picture_Of(frames[1]), Picture_Of(frames[2])};
  Stream stream;
  for (size_t i = 0; i < 18; ++i) {
    if (i % 4 == 1) stream.bytes.insert(stream.bytes.end(), text.begin(), text.end());
    const TestFrame& frame = frames[i / 2 % 3];
    const Bytes& bytes = i % 3 == 0 ? frame.jfif : i % 3 == 1 ? frame.compact : frame.prefixed;
    stream.starts.push_back(stream.bytes.size());
    stream.heads.push_back(i % 3 == 0 ? 625 : 26);
    stream.bytes.insert(stream.bytes.end(), bytes.begin(), bytes.end());
    stream.pictures.push_back(pictures[i / 2 % 3]);
  }
  return stream;
}

struct Receiver : LibraryTest {
  TestFrame small = Load_Frame("tile-48x48-q50.jpg", 50);
};

TEST_F(Receiver, PollingFindsEveryFrameWhateverTheChunks) {
  const Stream stream = Mixed_Stream("");  // Bytes of no frame would take the beginning of the next one with them.
  Noise noise{21};
  for (const int32_t largest : {1, 7, 40, 700, 5000, INT32_MAX}) {
    const DecoderPtr decoder = Headless_Decoder(16, 16);
    std::vector<Bytes> pictures;
    Bytes out(8192);
    for (size_t at = 0; at < stream.bytes.size();) {
      const size_t rest = stream.bytes.size() - at;
      const size_t count = std::min(rest, (size_t)noise.Between(1, largest) % (rest + 1) + (largest == INT32_MAX ? rest : 0));
      JDEC_Receive_Data_2(decoder.get(), &stream.bytes[at], (uint32_t)count);
      uint32_t length = 0;
      while (JDEC_Check_Decode_Frame(decoder.get(), 1, out.data(), (int32_t)out.size(), &length, 0, 1, nullptr) == 1) {
        pictures.push_back(Picture(decoder.get()));
        const size_t start = stream.starts[pictures.size() - 1];
        EXPECT_TRUE(std::equal(out.begin(), out.begin() + length, stream.bytes.begin() + (ptrdiff_t)start));
      }
      at += count;
    }
    EXPECT_TRUE(pictures == stream.pictures) << largest;
  }
}

TEST_F(Receiver, PushingFindsEveryFrameWhoseHeadComesInOnePiece) {
  const Stream stream = Mixed_Stream("\r\n--frame\r\nContent-Type: image/jpeg\r\n\r\n");
  Noise noise{22};
  for (int round = 0; round < 20; ++round) {
    const DecoderPtr decoder = Headless_Decoder(16, 16);
    std::vector<Bytes> pictures;
    size_t at = 0;
    for (size_t i = 0; i < stream.starts.size(); ++i) {  // Cut a few times behind each head: a chunk completes one frame at most.
      const size_t next = i + 1 < stream.starts.size() ? stream.starts[i + 1] : stream.bytes.size();
      for (size_t cut = stream.starts[i] + stream.heads[i]; at < next;) {
        cut = std::min(next, cut + (size_t)noise.Between(0, 900));
        const int32_t result = JDEC_Receive_Data(decoder.get(), (int32_t)(cut - at), &stream.bytes[at], nullptr);
        if (result != -1) pictures.push_back(Picture(decoder.get()));
        at = cut;
      }
    }
    EXPECT_TRUE(pictures == stream.pictures) << round;
  }
}

TEST_F(Receiver, NoDataAddsNothing) {
  const DecoderPtr decoder = Headless_Decoder(16, 16);
  EXPECT_EQ(JDEC_Receive_Data(nullptr, 4, small.jfif.data(), nullptr), -1);
  EXPECT_EQ(JDEC_Receive_Data(decoder.get(), 4, nullptr, nullptr), -1);
  EXPECT_EQ(JDEC_Receive_Data(decoder.get(), 0, small.jfif.data(), nullptr), -1);
  EXPECT_EQ(JDEC_Receive_Data(decoder.get(), INT32_MIN, small.jfif.data(), nullptr), -1);
  EXPECT_EQ(JDEC_Receive_Data_2(decoder.get(), nullptr, 5), 0);
  EXPECT_EQ(JDEC_Receive_Data_2(decoder.get(), small.jfif.data(), UINT32_MAX), 0);
  EXPECT_EQ(decoder->assemblyFill, 0);
  EXPECT_EQ(decoder->statsBits[0], 0);
  JDEC_get_size(decoder.get(), nullptr, nullptr);
}

TEST_F(Receiver, BitRateIsReportedEveryThreeSeconds) {
  const TestWindow window(32);
  const DecoderPtr decoder(JDEC_New(48, 48));
  JDEC_Draw_Init(decoder.get(), window.handle);
  const auto textAfter = [&](uint32_t tick, size_t bytes) {
    Screen_Set_Tick(tick);
    Push(decoder.get(), Bytes(bytes, 'x'));
    return std::string(decoder->display->osdText);
  };
  const auto text = [](const char* format, double bits, double milliseconds) {
    char buffer[64];
    snprintf(buffer, sizeof buffer, format, bits / milliseconds);
    return std::string(buffer);
  };
  EXPECT_EQ(textAfter(1000, 1000), "");
  EXPECT_EQ(textAfter(4000, 5250), "");                                  // Not yet: 3000 ms have passed, and no more.
  EXPECT_EQ(textAfter(4001, 7000), text("%.2f bps\n", 8 * 6250, 3001));  // 50000 bits are the most for this unit.
  EXPECT_EQ(textAfter(7001, 1), text("%.2f bps\n", 8 * 6250, 3001));
  EXPECT_EQ(textAfter(7002, 1), text("%.2f Kb\n", 8 * 7001, 6002));   // The other slot, since the first data.
  EXPECT_EQ(textAfter(10003, 1), text("%.2f Kb\n", 8 * 6251, 9003));  // The first slot goes on where it was.
  EXPECT_EQ(textAfter(500, 1), text("%.2f Kb\n", 8 * 6251, 9003));    // The clock began anew.
  EXPECT_EQ(textAfter(3501, 1), text("%.2f Kb\n", 8 * 7003, 3001));
  Screen_Real_Time();
}

struct Recording : Receiver {
  std::string path = testing::TempDir() + "velarto-recording-test.vlr";
  DecoderPtr decoder = Headless_Decoder(16, 16);
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
  Push(decoder.get(), noise);
  Push(decoder.get(), marked);         // Written: the mark is not known yet when its chunk is.
  Push(decoder.get(), small.compact);  // Skipped, and without a prefix: what follows is written.
  Push(decoder.get(), marked);
  Push(decoder.get(), unmarked);  // Skipped.
  Push(decoder.get(), small.jfif);
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
