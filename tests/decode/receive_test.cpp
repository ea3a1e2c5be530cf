// Chunks of any size into both paths; the bit rate; the recording.
#include "decode/receive.h"

#include "decode/frame.h"
#include "display/context.h"
#include "platform/portable/rig.h"
#include "support/streams.h"
#include "support/window.h"

#include <cstdio>

namespace {

/** The three wire forms in turn, sizes and qualities changing. */
struct Receiver : FramesTest {
  const DecoderPtr decoder = Headless_Decoder(16, 16);
  std::vector<Bytes> frames, pictures;
  Noise noise{21};

  Receiver() {
    for (size_t i = 0; i < 18; ++i) {
      const TestFrame& frame = i / 2 % 3 == 0 ? small : i / 2 % 3 == 1 ? middle : large;
      frames.push_back(frame.In_Form(i % 3));
      pictures.push_back(Picture_Of(frame));
    }
  }
};

TEST_F(Receiver, PollingFindsEveryFrameWhateverTheChunks) {
  const Bytes stream = Joined(frames);  // Bytes between frames would be dropped together with the beginning of the next frame.
  for (const int32_t largest : {1, 7, 40, 700, 5000, (int32_t)stream.size()}) {
    std::vector<Bytes> polledFrames, polledPictures;
    Bytes frame;
    for (size_t at = 0, count; at < stream.size(); at += count) {
      count = std::min(stream.size() - at, (size_t)noise.Between(largest > 5000 ? largest : 1, largest));
      JDEC_Receive_Data_2(decoder.get(), &stream[at], (uint32_t)count);
      while (Poll(decoder.get(), &frame) == 1) {
        polledPictures.push_back(Current_Picture(decoder.get()));
        polledFrames.push_back(frame);
      }
    }
    EXPECT_TRUE(polledPictures == pictures && polledFrames == frames) << largest;
  }
}

TEST_F(Receiver, PushingFindsEveryFrameWhoseHeaderComesInOnePiece) {
  const std::string text = "\r\n--frame\r\nContent-Type: image/jpeg\r\n\r\n";
  for (size_t i = 0; i < 360; ++i) {
    const Bytes& frame = frames[i % 18];
    const Bytes chunk = Joined({i % 4 == 1 ? Bytes(text.begin(), text.end()) : Bytes(), frame});
    size_t cut = chunk.size() - frame.size() + (i % 3 == 0 ? 625 : 26), taken = 0;
    for (size_t at = 0; at < chunk.size(); at = cut) {
      cut = std::min(chunk.size(), cut + (size_t)noise.Between(0, 900));
      taken += JDEC_Receive_Data(decoder.get(), (int32_t)(cut - at), &chunk[at], nullptr) != -1;
    }
    ASSERT_EQ(taken, 1u) << i;
    ASSERT_EQ(Current_Picture(decoder.get()), pictures[i % 18]) << i;
  }
}

TEST_F(Receiver, StartAtTheEndOfAFullBufferIsKept) {
  const auto middleOfHeader = small.jfif.begin() + 100;
  Store(decoder.get(), Joined({Bytes(StreamBufferSize - 100, 'x'), Bytes(small.jfif.begin(), middleOfHeader)}));
  EXPECT_EQ(Poll(decoder.get()), 2);
  Store(decoder.get(), Bytes(middleOfHeader, small.jfif.end()));
  EXPECT_EQ(Poll(decoder.get()), 1);
  EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(small));
}

/** A JFIF start whose end never comes must not block the stream, nor bytes before a start keep out those that it waits for. */
TEST_F(Receiver, RefusedChunksMakeRoom) {
  const Bytes endless = Joined({Bytes(small.jfif.begin(), small.jfif.begin() + 623), Bytes(700000, 'x')});
  for (const size_t largest : {24000u, 50000u, 100000u}) {
    const Bytes stream = Joined({endless, Joined(std::vector<Bytes>(40, large.jfif))});
    size_t taken = 0, refused = 0;
    for (size_t at = 0, count; at < stream.size(); at += count) {
      count = std::min(stream.size() - at, largest);
      const int32_t before = decoder->assemblyFill;
      JDEC_Receive_Data_2(decoder.get(), &stream[at], (uint32_t)count);
      if (decoder->assemblyFill == before) count = 0, ++refused;
      while (Poll(decoder.get()) == 1) ++taken;
      ASSERT_LE(refused, 2u) << largest;
    }
    EXPECT_EQ(taken, 40u) << largest;
    JDEC_Flush(decoder.get());
  }
  const auto middleOfHeader = small.jfif.begin() + 100;
  Store(decoder.get(), Joined({Bytes(StreamBufferSize - 200, 'x'), Bytes(small.jfif.begin(), middleOfHeader)}));
  EXPECT_EQ(Poll(decoder.get()), 2);
  Store(decoder.get(), Bytes(middleOfHeader, small.jfif.end()));
  EXPECT_EQ(Poll(decoder.get()), 1);
  // A frame whose end is held already stays, even if no poll has seen the end yet.
  Store(decoder.get(), {small.jfif.begin(), small.jfif.end() - 1});
  EXPECT_EQ(Poll(decoder.get()), 2);
  Store(decoder.get(), {small.jfif.back()});
  EXPECT_EQ(Store(decoder.get(), Bytes(StreamBufferSize)), 0);
  EXPECT_EQ(Poll(decoder.get()), 1);
}

TEST_F(Receiver, SlicesOfALongChunkCutNoHeader) {
  for (const int32_t inFirstSlice : {1, 9, 13, 14, 25, 300, 624, 625}) {
    for (const size_t form : {Jfif, Compact, Prefixed}) {
      const Bytes frame = middle.In_Form(form), filler((size_t)(StreamBufferSize - inFirstSlice), 'x');
      JDEC_Flush(decoder.get());
      EXPECT_NE(Push(decoder.get(), Joined({filler, frame, small.compact})), -1);
      EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(small));
      EXPECT_NE(Push(decoder.get(), Joined({filler, frame})), -1) << form << " with " << inFirstSlice;
      EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(middle)) << form << " with " << inFirstSlice;
    }
  }
}

TEST_F(Receiver, PollingSkipsAHeaderWithoutScan) {
  Bytes bytes = small.jfif;
  bytes[610] = 0;
  Store(decoder.get(), bytes);
  EXPECT_EQ(Poll(decoder.get()), 3);
}

TEST_F(Receiver, DelimitedFramesLeaveTheOpenFrameAlone) {
  const size_t half = large.compact.size() / 2;
  Push(decoder.get(), Bytes(large.compact.begin(), large.compact.begin() + (ptrdiff_t)half));
  JDEC_show(decoder.get(), 0);
  for (size_t i = 0; i < frames.size(); ++i) {
    const Bytes& frame = frames[i];
    const auto form = i % 3 == Jfif ? FrameForm::Jfif : i % 3 == Compact ? FrameForm::Compact : FrameForm::Prefixed;
    EXPECT_TRUE(Decode_Delimited_Frame(decoder.get(), frame, form, false));
    EXPECT_EQ(Current_Picture(decoder.get()), pictures[i]) << i;
    EXPECT_FALSE(Decode_Delimited_Frame(decoder.get(), {frame.data(), 11}, form, false));
    EXPECT_FALSE(Decode_Delimited_Frame(decoder.get(), Bytes(FrameStoreSize + 1), form, false));
    EXPECT_EQ(Current_Picture(decoder.get()), pictures[i]) << i;
  }
  JDEC_show(decoder.get(), 1);
  EXPECT_NE(Push(decoder.get(), Bytes(large.compact.begin() + (ptrdiff_t)half, large.compact.end())), -1);
  EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(large));
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
  const DecoderPtr shown = Shown_Decoder(window.handle, 48, 48);
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
               {500, 1, "5.55 Kb\n"},        // The clock started again.
               {3501, 1, "18.67 Kb\n"}};     // 7003 bytes in 3001 ms.
  for (const auto& [tick, bytes, text] : steps) {
    Rig_Set_Tick(tick);
    Push(shown.get(), Bytes(bytes, 'x'));
    EXPECT_STREQ(shown->display->osdText, text) << tick;
  }
  Rig_Real_Time();
}

struct StreamRecordingTest : Receiver {
  const std::string path = Scratch_Path("recording.vlr");
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
  ~StreamRecordingTest() override {
    Screen_Remove();
    remove(path.c_str());
  }
};

TEST_F(StreamRecordingTest, BeginsWithTheFirstFrameAndSkipsWhatTheCameraMarks) {
  const Bytes text(100, 'n'), marked = Prefixed_Frame(small.compact, 0x08), unmarked = Prefixed_Frame(small.compact, 0xF7);
  Start();
  Push(decoder.get(), text);
  EXPECT_EQ(decoder->recordState, RecordWaiting);
  Push(decoder.get(), Joined({text, small.prefixed}));
  EXPECT_EQ(decoder->recordState, RecordWriting);
  // The first mark is not known yet when its chunk is written; after a frame without a prefix the next one is written too.
  for (const Bytes& chunk : {text, marked, small.compact, marked, unmarked, small.jfif}) Push(decoder.get(), chunk);
  EXPECT_EQ(Finish(), Joined({small.prefixed, text, marked, marked, small.jfif}));
}

TEST_F(StreamRecordingTest, LargeChunkIsOneWrite) {
  Start();
  const Bytes chunk = Joined({small.jfif, Bytes(1200000, 'x'), small.compact});
  const int32_t calls = Rig_Calls(RigStep::WriteFile);
  EXPECT_EQ(Push(decoder.get(), chunk), (int32_t)chunk.size());
  EXPECT_EQ(Rig_Calls(RigStep::WriteFile), calls + 1);
  EXPECT_EQ(decoder->statsBits[0], 8.0 * (double)chunk.size());
  EXPECT_EQ(Finish(), chunk);
}

TEST_F(StreamRecordingTest, EndsWithAWriteThatFailsOrIsShort) {
  for (const RigStep step : {RigStep::WriteFile, RigStep::ShortWrite}) {
    const int32_t before = Rig_Objects_Alive();
    Start();
    Push(decoder.get(), small.compact);
    Rig_Fail(step);
    JDEC_Flush(decoder.get());
    EXPECT_EQ(Push(decoder.get(), small.jfif), (int32_t)small.jfif.size());
    Rig_Fail_Nothing();
    EXPECT_EQ(decoder->recordFile, nullptr);
    EXPECT_EQ(decoder->recordState, RecordOff);
    EXPECT_EQ(Rig_Objects_Alive(), before);
    EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(small));
  }
}

}  // namespace
