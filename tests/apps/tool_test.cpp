#include "apps/tool.h"

#include "apps/rude_server.h"
#include "apps/velarto/frame_walk.h"
#include "support/levels.h"

#include <cinttypes>
#include <sstream>

namespace {

TEST_F(ToolTest, InfoListsTheFramesThatTheWalkFinds) {
  const std::string stream = Read_File(sample);
  FrameWalk walk;
  Walk_Add(&walk, {reinterpret_cast<const uint8_t*>(stream.data()), stream.size()});
  Walk_End(&walk);
  const Outcome json = Run("info --json " + sample);
  std::istringstream lines(json.out);
  std::string line;
  WalkedFrame frame;
  while (Walk_Next(&walk, &frame)) {
    ASSERT_TRUE(std::getline(lines, line));
    int64_t number = -1, offset = -1;
    size_t bytes = 0;
    char form[16] = "";
    int width = 0, height = 0, quality = 0, length = 0;
    std::sscanf(line.c_str(),
                "{\"type\":\"frame\",\"frame\":%" SCNd64 ",\"offset\":%" SCNd64
                ",\"form\":\"%15[a-z]\",\"bytes\":%zu,\"width\":%d,\"height\":%d,\"quality\":%d}%n",
                &number, &offset, form, &bytes, &width, &height, &quality, &length);
    ASSERT_EQ(static_cast<size_t>(length), line.size()) << line;
    EXPECT_EQ(std::tie(number, offset), std::tie(frame.number, frame.offset));
    EXPECT_EQ(std::string(form), Form_Name(frame.form));
    EXPECT_EQ(bytes, frame.bytes.size());
    EXPECT_TRUE(width == 320 && height == 240 && quality >= 50 && quality <= 75) << line;
  }
  ASSERT_TRUE(std::getline(lines, line));
  EXPECT_TRUE(line.starts_with("{\"type\":\"summary\",\"frames\":120,\"skipped\":18,\"mean\":")) << line;
  EXPECT_FALSE(std::getline(lines, line));
  EXPECT_EQ(json.code, 0);
  EXPECT_EQ(json.err, "");

  const Outcome text = Run("info --cpu plain - < " + sample);
  EXPECT_EQ(std::ranges::count(text.out, '\n'), 121);
  EXPECT_NE(text.out.find("\n120 frames, 18 bytes skipped, mean frame size "), std::string::npos);
  EXPECT_EQ(Run("info " + sample + " | head -n 1").code, 0);
}

TEST_F(ToolTest, ExportWritesTheSelectedPictures) {
  const Outcome some = Run("export " + sample + " -o 'a%%%03d.bmp' --first 5 --every 40 --count 3");
  EXPECT_EQ(some.code, 0) << some.err;
  EXPECT_EQ(some.out, "3 pictures written\n");
  EXPECT_EQ(Pictures(), std::vector<std::string>({"a%005.bmp", "a%045.bmp", "a%085.bmp"}));
  const std::string first = Read_File(folder / "a%005.bmp");
  EXPECT_EQ(first.size(), 54u + 320 * 240 * 3);
  EXPECT_TRUE(first.starts_with("BM"));
  EXPECT_NE(first, Read_File(folder / "a%045.bmp"));

  // One picture under a plain name, in the place of an older file.
  EXPECT_EQ(Run("export " + sample + " -o 'a%%045.bmp' --first 5 --count 1").code, 0);
  EXPECT_EQ(Read_File(folder / "a%045.bmp"), first);
}

TEST_F(ToolTest, ExportPadsRowsAndLeavesOutWhatCannotBeDecoded) {
  // 18 x 17 pixels in 13 bytes, less than a search wants; 65535 x 65535, above what can be decoded; the first again, prefixed.
  const std::string small("\xFF\xD8\x01\0\x12\0\x11\0\x32\0\xFF\xD9\0", 13);
  const std::string huge("\xFF\xD8\0\0\xFF\xFF\xFF\xFF\x32\0\xFF\xD9", 12);
  Write("stream", small + huge + std::string("\xF6\0\xFF\0\xF9\0\xDD\0\0\0\0\0\xC5\0", 14) + small);
  const Outcome outcome = Run("export stream -o %d.bmp");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.err.find("frame 1 at offset 13 can't be decoded"), std::string::npos) << outcome.err;
  EXPECT_EQ(Pictures(), std::vector<std::string>({"0.bmp", "2.bmp", "stream"}));
  const std::string bmp = Read_File(folder / "0.bmp");
  ASSERT_EQ(bmp.size(), 54u + 56 * 17);
  EXPECT_EQ(static_cast<uint8_t>(bmp[2]) + 256 * static_cast<uint8_t>(bmp[3]), 54 + 56 * 17);
  EXPECT_EQ(bmp.substr(54 + 56 + 54, 2), std::string(2, '\0'));
  EXPECT_EQ(Read_File(folder / "2.bmp"), bmp);
}

TEST_F(ToolTest, BenchTellsRatesAndShares) {
  std::string huge("\xFF\xD8\0\0\xFF\xFF\xFF\xFF\x32\0\xFF\xD9", 12);
  huge.resize(30);  // Enough bytes for a search.
  Write("stream", Read_File(sample) + huge);
  const Outcome outcome = Run("bench - --json --cpu plain --seconds 0.1 < stream");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(outcome.err.starts_with("velarto: 1 of 121 frames can't be decoded, left out\n")) << outcome.err;
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
  Write("huge", huge);
  EXPECT_NE(Run("bench huge").err.find("there is nothing to decode in huge"), std::string::npos);
}

TEST_F(ToolTest, FailuresAreOneLine) {
  Write("empty", "");
  Write("garbage", std::string(70000, '\xFF'));
  Write("cut", Read_File(sample).substr(0, 5000));
  Expect_Failure("info missing", "can't open missing: ");
  Expect_Failure("export . -o x%d.bmp", ". is a directory");
  Expect_Failure("view empty", "no frame found in empty (0 bytes read)");
  Expect_Failure("info - < garbage", "no frame found in standard input (70000 bytes read)");
  Expect_Failure("export cut -o x%d.bmp", "no frame found in cut (5000 bytes read)");
  Expect_Failure("export " + sample + " -o nowhere/%d.bmp", "there is no folder nowhere");
  Expect_Failure("export " + sample + " -o x%d.bmp --first 120", "ends before frame 120");
  Expect_Failure("bench cut", "no frame found in cut (5000 bytes read)");
  Expect_Failure("info tcp://nowhere", "the address must read tcp://HOST:PORT");
  Expect_Failure("info tcp://no-such-host.invalid:1", "can't connect to tcp://no-such-host.invalid:1: ");
  Expect_Failure("info tcp://127.0.0.1:1", "refused");
  Expect_Failure("view tcp://127.0.0.1:1", "refused");
  const Outcome longName = Run("export " + sample + " -o " + std::string(300, 'x') + "%d.bmp");
  EXPECT_EQ(longName.code, 1);
  EXPECT_NE(longName.err.find("File name too long"), std::string::npos) << longName.err;
  const Outcome full = Run("info " + sample + " >/dev/full");
  EXPECT_EQ(full.code, 1);
  EXPECT_EQ(full.err, "velarto: can't write the output: No space left on device\n");
  EXPECT_EQ(Pictures().size(), 3u);
}

TEST_F(ToolTest, WrongUsageIsTold) {
  for (const std::string usage : {"",
                                  "play x",
                                  "info",
                                  "info x --cpu abacus",
                                  "export x",
                                  "export x -o %s --count 1",
                                  "export x -o %d%d",
                                  "export x -o %04 --count 1",
                                  "export x -o same.bmp",
                                  "export x -o %d --every 0",
                                  "view - --loop",
                                  "view x --fps 0",
                                  "view x --snapshots nowhere",
                                  "camera --size 100x100",
                                  "camera --size 640x",
                                  "camera --fps 0",
                                  "camera --cut 2",
                                  "camera --port 70000",
                                  "bench tcp://127.0.0.1:1",
                                  "bench x --seconds 0"}) {
    const Outcome outcome = Run(usage);
    EXPECT_EQ(outcome.code, 2) << usage;
    EXPECT_EQ(outcome.out, "") << usage;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << usage << ": " << outcome.err;
  }
  for (const std::string command : {"", "info ", "export ", "view ", "camera ", "bench "}) {
    const Outcome help = Run(command + "--help");
    EXPECT_EQ(help.code, 0);
    EXPECT_NE(help.out.find("Example:\n  velarto "), std::string::npos) << help.out;
  }
  std::string version = "velarto " VELARTO_VERSION " (kernels: ";
  version.append(Test_Levels().back().name).append(")\n");
  EXPECT_EQ(Run("--version").out, version);
}

/** The tool without the libraries that take most of the memory, and without the program that has them. */
TEST_F(ToolTest, StaysSmallAndTellsWhatIsMissing) {
  const std::string alone = folder / "velarto";
  fs::copy_file(VELARTO_TOOL_PATH, alone);
  const auto run = [&](const std::string& line) { return std::system((line + " >" + alone + ".out 2>&1").c_str()); };
  run("LD_TRACE_LOADED_OBJECTS=1 " + alone);
  EXPECT_NE(Read_File(alone + ".out").find("libstdc++"), std::string::npos);
  for (const char* const large : {"SDL", "curl", "crypto", "httplib"})
    EXPECT_EQ(Read_File(alone + ".out").find(large), std::string::npos) << large;
  EXPECT_EQ(run(alone + " info " + sample), 0);
  EXPECT_NE(run(alone + " info http://127.0.0.1:1/"), 0);
  EXPECT_EQ(Read_File(alone + ".out"), "velarto: can't start " + alone + "-live: No such file or directory\n");
}

TEST_F(ToolTest, TcpSourcesAreReadToTheirEnd) {
  const std::string stream = Read_File(sample);
  {
    const RudeServer server({[&](int client) { Send(client, stream); }});
    EXPECT_NE(Run("info " + server.Name("tcp")).out.find("\n120 frames, 18 bytes skipped"), std::string::npos);
  }
  const RudeServer server(
      {[&](int client) { Send(client, stream.substr(0, stream.size() - 1000)); }});  // Cut inside the last frame.
  const Outcome cut = Run("export " + server.Name("tcp") + " -o %d.bmp --every 60");
  EXPECT_EQ(cut.out, "2 pictures written\n");
  EXPECT_EQ(cut.code, 0);
}

TEST_F(ToolTest, ViewEndsAfterTheFramesAskedFor) {
  const Outcome recording = Run("view " + sample + " --fps 500 --frames 30");
  EXPECT_EQ(recording.code, 0) << recording.err;
  EXPECT_EQ(recording.out, "");
  const RudeServer server({[](int client) { Send(client, Read_File(sample)); }});
  EXPECT_EQ(Run("view " + server.Name("tcp") + " --frames 100").code, 0);
}

}  // namespace
