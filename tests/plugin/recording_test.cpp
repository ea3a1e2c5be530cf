#include "plugin/recording.h"

#include "plugin/browser.h"

#include <thread>

struct RecordingTest : PluginTest {
  const Bytes frames = Joined({small.prefixed, {1, 2, 3}, large.compact});
  void Command(WPARAM number) { SendMessageA(window, WM_COMMAND, number, 0); }
};

TEST_F(RecordingTest, HoldsTheStreamFromTheFirstFrameStartOn) {
  Open(0, 1, window);
  Rig_Set_Local_Time({2010, 9, 5, 24, 14, 5, 9, 123});
  Command(StartRecordingCommand);
  EXPECT_EQ(proposed, "2010_9_24_14_5_9_123.vlr");
  Feed(Bytes(500, 7));
  EXPECT_EQ(Signs(), SAVING_TEXT "101") << "no frame yet";
  Feed(Joined({Bytes(100, 7), frames}));
  EXPECT_EQ(Signs(), SAVING_TEXT "104");
  const Bytes forbids = Joined({{9, 9}, Prefixed_Frame(small.compact, 0x08)});
  for (const Bytes& part : {forbids, frames, Bytes{5}}) Feed(part);  // It takes effect after its own chunk.
  Screen_Set_File_Chooser(nullptr);
  Command(StartRecordingCommand);  // Ends the current one; then the user cancels.
  EXPECT_EQ(Read_File(path), Joined({frames, forbids, {5}}));
  EXPECT_EQ(Signs(), IDLE_TEXT "101");
}

TEST_F(RecordingTest, EndsByItselfWhereItCannotGoOn) {
  Open(0, 1, window);
  const int32_t objects = Rig_Objects_Alive();
  for (const auto& [step, size] : {std::pair{RigStep::WriteFile, frames.size()}, {RigStep::ShortWrite, 2 * frames.size() - 1}}) {
    Command(StartRecordingCommand);
    Feed(frames);
    Rig_Fail(step, 0, 1);
    for (int i = 0; i < 2; ++i) Feed(frames);
    EXPECT_EQ(Signs(), IDLE_TEXT "101");
    EXPECT_EQ(Read_File(path).size(), size);
  }
  for (const WPARAM command : {StartRecordingCommand, StopRecordingCommand}) Command(command);
  EXPECT_EQ(Read_File(path), Bytes()) << "replaced, and no frame came";
  EXPECT_EQ(Rig_Objects_Alive(), objects);
  Screen_Set_File_Chooser([](const OPENFILENAMEA&) { return "/nowhere/at all.vlr"; });
  Command(StartRecordingCommand);
  EXPECT_EQ(Rig_Take_Messages(), std::vector<std::string>{"ERROR|Cannot Open File!"}) << "and nothing of the failed writes";
  Screen_Set_File_Chooser([&](const OPENFILENAMEA&) { return End_Instance(), path; });
  Command(StartRecordingCommand);  // No file may stay open.
}

TEST_F(RecordingTest, ThreadsThatFeedAndStopKeepTheFileWhole) {
  Start(0, 0);
  const DecoderPtr decoder = Headless_Decoder(48, 48);
  std::atomic<bool> done = false;
  std::thread feeder([&] {
    while (!done) Push(decoder.get(), small.compact);
  });
  for (int32_t whole = 0, i = 0; whole < 20; ++i) {
    Record_Start(window, decoder.get());
    Sleep(static_cast<DWORD>(i % 4));
    Record_Stop(window, decoder.get());
    const Bytes file = Read_File(path);
    EXPECT_EQ(file, Joined(std::vector<Bytes>(file.size() / small.compact.size(), small.compact)));
    whole += file.empty() ? 0 : 1;
  }
  done = true;
  feeder.join();
}
