#include "apps/tool.h"

#include "apps/rude_server.h"
#include "apps/velarto/frame_walk.h"
#include "support/levels.h"

#include <cinttypes>

namespace {

// A frame of 65535 x 65535, above what can be decoded.
const std::string huge("\xFF\xD8\0\0\xFF\xFF\xFF\xFF\x32\0\xFF\xD9", 12);

TEST_F(ToolTest, InfoListsTheFramesThatTheWalkFinds) {
  FrameWalk walk;
  Walk_Add(&walk, Read_File(sample));
  Walk_End(&walk);
  std::string expected;
  for (WalkedFrame frame; Walk_Next(&walk, &frame);) {
    EXPECT_TRUE(frame.quality >= 50 && frame.quality <= 75);
    char line[200];
    std::snprintf(line, sizeof line,
                  "{\"type\":\"frame\",\"frame\":%" PRId64 ",\"offset\":%" PRId64
                  ",\"form\":\"%s\",\"bytes\":%zu,\"width\":320,\"height\":240,\"quality\":%d}\n",
                  frame.number, frame.offset, Form_Name(frame.form), frame.bytes.size(), frame.quality);
    expected += line;
  }
  const Outcome json = Run("info --json " + sample);
  EXPECT_TRUE(json.out.starts_with(expected + "{\"type\":\"summary\",\"frames\":120,\"skipped\":18,\"mean\":")) << json.out;
  EXPECT_EQ(std::ranges::count(json.out, '\n'), 121);
  EXPECT_EQ(json.code, 0);
  EXPECT_EQ(json.err, "");

  const Outcome text = Run("info --cpu plain - < " + sample);
  EXPECT_EQ(std::ranges::count(text.out, '\n'), 121);
  Expect_In(text.out, "\n120 frames, 18 bytes skipped, mean frame size ");
  EXPECT_EQ(Run("info " + sample + " | head -n 1").code, 0);
}

TEST_F(ToolTest, ExportWritesTheSelectedPictures) {
  const Outcome some = Run("export " + sample + " -o 'a%%%03d.bmp' --first 5 --every 40 --count 3");
  EXPECT_EQ(some.code, 0) << some.err;
  EXPECT_EQ(some.out, "3 pictures written\n");
  EXPECT_EQ(Pictures(), std::vector<std::string>({"a%005.bmp", "a%045.bmp", "a%085.bmp"}));
  const std::string first = Read_Text(folder / "a%005.bmp");
  EXPECT_EQ(first.size(), 54u + 320 * 240 * 3);
  EXPECT_TRUE(first.starts_with("BM"));
  EXPECT_NE(first, Read_Text(folder / "a%045.bmp"));

  // One picture under a plain name, in place of an older file.
  EXPECT_EQ(Run("export " + sample + " -o 'a%%045.bmp' --first 5 --count 1").code, 0);
  EXPECT_EQ(Read_Text(folder / "a%045.bmp"), first);
}

TEST_F(ToolTest, ExportPadsRowsAndSkipsWhatCannotBeDecoded) {
  // 18 x 17 pixels in 13 bytes, less than a search needs; one that can't be decoded; the first again, prefixed.
  const std::string small("\xFF\xD8\x01\0\x12\0\x11\0\x32\0\xFF\xD9\0", 13);
  Write("stream", small + huge + std::string("\xF6\0\xFF\0\xF9\0\xDD\0\0\0\0\0\xC5\0", 14) + small);
  const Outcome outcome = Run("export stream -o %d.bmp");
  EXPECT_EQ(outcome.code, 0);
  Expect_In(outcome.err, "frame 1 at offset 13 can't be decoded");
  EXPECT_EQ(Pictures(), std::vector<std::string>({"0.bmp", "2.bmp", "stream"}));
  const std::string bmp = Read_Text(folder / "0.bmp");
  ASSERT_EQ(bmp.size(), 54u + 56 * 17);
  EXPECT_EQ(static_cast<uint8_t>(bmp[2]) + 256 * static_cast<uint8_t>(bmp[3]), 54 + 56 * 17);
  EXPECT_EQ(bmp.substr(54 + 56 + 54, 2), std::string(2, '\0'));
  EXPECT_EQ(Read_Text(folder / "2.bmp"), bmp);
}

TEST_F(ToolTest, BenchPrintsRatesAndShares) {
  const std::string searched = huge + std::string(18, 0);  // Enough bytes for a search.
  Write("stream", Read_Text(sample) + searched);
  const Outcome outcome = Run("bench - --json --cpu plain --seconds 0.1 < stream");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(outcome.err.starts_with("velarto: 1 of 121 frames can't be decoded: skipped\n")) << outcome.err;
  int decoded = 0, length = 0;
  double seconds = 0, frames = 0, megapixels = 0, megabytes = 0, search = 0, entropy = 0, transform = 0, color = 0;
  std::sscanf(outcome.out.c_str(),
              "{\"kernels\":\"plain\",\"frames\":120,\"decoded\":%d,\"seconds\":%lf,\"framesPerSecond\":%lf,"
              "\"megapixelsPerSecond\":%lf,\"megabytesPerSecond\":%lf,"
              "\"shares\":{\"search\":%lf,\"entropy\":%lf,\"transform\":%lf,\"color\":%lf}}\n%n",
              &decoded, &seconds, &frames, &megapixels, &megabytes, &search, &entropy, &transform, &color, &length);
  ASSERT_EQ(static_cast<size_t>(length), outcome.out.size()) << outcome.out;
  EXPECT_GE(seconds, 0.1);
  EXPECT_NEAR(frames * seconds / decoded, 1, 0.01);
  EXPECT_NEAR(megapixels / frames, 0.0768, 0.001);
  EXPECT_GT(megabytes, 0);
  EXPECT_NEAR(search + entropy + transform + color, 1, 0.001);
  EXPECT_GT(std::min({search, entropy, transform, color}), 0) << outcome.out;
  Write("huge", searched);
  Expect_In(Run("bench huge").err, "no frame of huge can be decoded");
}

TEST_F(ToolTest, FailuresAreOneLine) {
  Write("empty", "");
  Write("garbage", std::string(70000, '\xFF'));
  Write("cut", Read_Text(sample).substr(0, 5000));
  Expect_Failure("info missing", "can't open missing: ");
  Expect_Failure("export . -o x%d.bmp", ". is a directory");
  Expect_Failure("view empty", "no frame found in empty (0 bytes read)");
  Expect_Failure("info - < garbage", "no frame found in standard input (70000 bytes read)");
  Expect_Failure("export cut -o x%d.bmp", "no frame found in cut (5000 bytes read)");
  Expect_Failure("export " + sample + " -o nowhere/%d.bmp", "there is no folder nowhere");
  Expect_Failure("export " + sample + " -o x%d.bmp --first 120", "ends before frame 120");
  Expect_Failure("bench cut", "no frame found in cut (5000 bytes read)");
  Expect_Failure("info tcp://nowhere", "the address must have the form tcp://HOST:PORT");
  Expect_Failure("info tcp://no-such-host.invalid:1", "can't connect to tcp://no-such-host.invalid:1: ");
  Expect_Failure("info tcp://127.0.0.1:1", "refused");
  Expect_Failure("view tcp://127.0.0.1:1", "refused");
  Expect_Failure("export " + sample + " -o " + std::string(300, 'x') + "%d.bmp", "File name too long");
  Expect_Failure("info " + sample + " >/dev/full", "can't write the output: No space left on device\n");
  EXPECT_EQ(Pictures().size(), 3u);
}

TEST_F(ToolTest, WrongUsageIsReported) {
  const std::pair<std::string, std::vector<std::string>> usages[] = {
      {"", {"", "play x"}},
      {"info ", {"", "x --cpu abacus"}},
      {"make ", {"", "x", "-o y", "x -o y --quality 101", "x -o y --form gif", "x -o y --repeat 0"}},
      {"export ",
       {"x", "x -o %s --count 1", "x -o %d%d", "x -o %04 --count 1", "x -o same.bmp", "x -o %d --every 0",
        "x -o %d --format png"}},
      {"view ", {"- --loop", "x --fps 0", "x --snapshots nowhere"}},
      {"camera ", {"--size 100x100", "--size 640x", "--fps 0", "--cut 2", "--port 70000"}},
      {"bench ", {"tcp://127.0.0.1:1", "x --seconds 0"}}};
  for (const auto& [command, wrong] : usages) {
    for (const std::string& arguments : wrong) Expect_Failure(command + arguments, "", 2);
    const Outcome help = Run(command + "--help");
    EXPECT_EQ(help.code, 0);
    Expect_In(help.out, "Example:\n  velarto ");
  }
  std::string version = "velarto " VELARTO_VERSION " (kernels: ";
  version.append(Test_Levels().back().name).append(")\n");
  EXPECT_EQ(Run("--version").out, version);
}

TEST_F(ToolTest, ATcpSourceIsReadToItsEnd) {
  const std::string stream = Read_Text(sample), cut = stream.substr(0, stream.size() - 1000);  // Inside the last frame.
  const RudeServer server({[&](int client) { Send(client, cut); }});
  const Outcome outcome = Run("info " + server.Name("tcp"));
  Expect_In(outcome.out, "\n119 frames, ");
  EXPECT_EQ(outcome.code, 0);
}

TEST_F(ToolTest, ViewEndsAfterTheFramesAskedFor) {
  const Outcome recording = Run("view " + sample + " --fps 500 --frames 30");
  EXPECT_EQ(recording.code, 0) << recording.err;
  EXPECT_EQ(recording.out, "");
  const RudeServer server({[](int client) { Send(client, Read_Text(sample)); }});
  EXPECT_EQ(Run("view " + server.Name("tcp") + " --frames 100").code, 0);
}

}  // namespace
