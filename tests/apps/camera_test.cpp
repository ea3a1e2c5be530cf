#include "apps/tool.h"
#include "apps/velarto/camera/chaos.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

#include <chrono>
#include <set>
#include <thread>

namespace {

/** Milliseconds: more than any answer takes, less than the time after which a stalled client is dropped. */
constexpr int AnswerTime = 20000;

/** A camera in its own process, on free ports; ended by a signal, which must work at once, with clients connected. */
struct RunningCamera {
  explicit RunningCamera(const std::string& arguments) {
    const std::string line = "echo $$; exec " VELARTO_TOOL_PATH " camera --port 0 --raw-port 0 " + arguments + " 2>/dev/null";
    output = popen(line.c_str(), "r");
    EXPECT_EQ(std::fscanf(output, "%d http://127.0.0.1:%hu/ %*s %*s %*s tcp://127.0.0.1:%hu", &pid, &port, &rawPort), 3);
  }
  ~RunningCamera() {
    const auto start = std::chrono::steady_clock::now();
    if (pid > 0) kill(pid, SIGTERM);
    EXPECT_EQ(pclose(output), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(AnswerTime));
  }
  FILE* output;
  int pid = 0;
  uint16_t port = 0, rawPort = 0;
};

/** A connection to a path of the camera's HTTP port; with an empty path, to its raw port. */
struct Client {
  Client(const RunningCamera& camera, const std::string& path, int buffer = 1 << 20) : handle(socket(AF_INET, SOCK_STREAM, 0)) {
    setsockopt(handle, SOL_SOCKET, SO_RCVBUF, &buffer, sizeof buffer);
    sockaddr_in address = {AF_INET, htons(path.empty() ? camera.rawPort : camera.port), {htonl(INADDR_LOOPBACK)}, {}};
    EXPECT_EQ(connect(handle, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    if (path.empty()) return;
    dprintf(handle, "GET %s HTTP/1.1\r\nHost: camera\r\n\r\n", path.c_str());
    header = Header();
  }
  ~Client() { close(handle); }
  /** Waits for bytes; false at the end, or when none come. */
  bool Receive() {
    pollfd waiting = {handle, POLLIN, 0};
    char bytes[65536];
    const ssize_t count = poll(&waiting, 1, AnswerTime) == 1 ? recv(handle, bytes, sizeof bytes, 0) : 0;
    if (count > 0) taken.append(bytes, static_cast<size_t>(count));
    return count > 0;
  }
  std::string Take(size_t count = 1 << 30) {
    while (taken.size() < count && Receive()) continue;
    return std::exchange(taken, count < taken.size() ? taken.substr(count) : "").substr(0, count);
  }
  std::string Header() {
    while (taken.find("\r\n\r\n") == taken.npos && Receive()) continue;
    return Take(taken.find("\r\n\r\n") + 4);
  }
  /** The next frame of the stream, empty if none comes. */
  std::string Frame() {
    while (!Walk_Next(&walk, &frame)) {
      if (taken.empty() && !Receive()) return "";
      Walk_Add(&walk, {reinterpret_cast<const uint8_t*>(taken.data()), taken.size()});
      taken.clear();
    }
    return {frame.bytes.begin(), frame.bytes.end()};
  }
  int handle;
  std::string header, taken;
  FrameWalk walk;
  WalkedFrame frame;
};

/** Does another decoder read this JPEG picture without a warning? */
bool Djpeg_Reads(const std::string& jpeg) {
  FILE* const decoder = popen("djpeg -strict >/dev/null", "w");
  std::fwrite(jpeg.data(), 1, jpeg.size(), decoder);
  return pclose(decoder) == 0;
}

TEST_F(ToolTest, CameraServesEachPath) {
  for (const FrameForm form : {FrameForm::Compact, FrameForm::Prefixed, FrameForm::Jfif}) {
    const RunningCamera camera(std::string("--size 320x240 --form ") + Form_Name(form));
    Client page(camera, "/"), nothing(camera, "/nothing"), still(camera, "/still.jpg"), parts(camera, "/mjpeg");
    Client stream(camera, "/stream"), raw(camera, "");
    Expect_In(page.header, "Content-Type: text/html");
    Expect_In(page.Take(), "<img src=\"/mjpeg\"");
    Expect_In(nothing.header, "404 Not Found");
    Expect_In(still.header, "Content-Type: image/jpeg");
    Expect_In(still.header, "Cache-Control: no-store");
    EXPECT_TRUE(Djpeg_Reads(still.Take()));
    Expect_In(parts.header, "multipart/x-mixed-replace; boundary=velarto-frame");
    for (int i = 0; i < 3; ++i) {
      const std::string header = parts.Header();
      size_t length = 0;
      std::sscanf(header.c_str(), "--velarto-frame\r\nContent-Type: image/jpeg\r\nContent-Length: %zu", &length);
      EXPECT_TRUE(Djpeg_Reads(parts.Take(length))) << header;
      EXPECT_EQ(parts.Take(2), "\r\n");
    }
    Expect_In(stream.header, "Content-Type: video/x-orvistream");
    for (Client* client : {&stream, &raw}) {
      for (int i = 0; i < 3; ++i) ASSERT_FALSE(client->Frame().empty());
      EXPECT_TRUE(client->frame.form == form && client->frame.width == 320 && Walk_Skipped(client->walk) == 0);
    }
  }
}

TEST_F(ToolTest, CameraClientsThatStallLoseWholeFramesAndDontDelayOthers) {
  static constexpr int Rate = 20, Frames = 60;
  std::vector<std::unique_ptr<Client>> stalled, live;  // They outlive the camera, which must end with clients connected.
  const RunningCamera camera("--size 320x240 --quality 100 --fps " + std::to_string(Rate));
  for (int i = 0; i < 20; ++i)
    (i < 4 ? stalled : live).push_back(std::make_unique<Client>(camera, "/stream", i < 4 ? 4096 : 1 << 20));
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < Frames * 16; ++i) ASSERT_FALSE(live[i % 16]->Frame().empty());
  // These 3 seconds would be 30 for a client delayed by a stalled one.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(AnswerTime));
  // A stalled client that reads again gets the newest frames; it has lost whole frames only.
  std::set<std::string> now, awake;
  for (std::string next, late; !now.contains(late) && !awake.contains(next);) {
    now.insert(next = live[0]->Frame());
    awake.insert(late = stalled[0]->Frame());
    ASSERT_TRUE(!next.empty() && !late.empty() && now.size() < Frames);
  }
  EXPECT_TRUE(stalled[0]->walk.frames < live[0]->walk.frames && Walk_Skipped(stalled[0]->walk) == 0);
}

/** Clients leave in the middle of headers, frames and requests; two stay. */
TEST_F(ToolTest, CameraClientsComeAndGo) {
  for (const std::string form : {"prefixed", "jfif"}) {
    std::unique_ptr<Client> staying[2];
    const RunningCamera camera("--size 160x128 --fps 100 --garbage 0.1 --corrupt 0.1 --form " + form);
    for (auto& client : staying) client = std::make_unique<Client>(camera, "/stream");
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < 8; ++t) {
      threads.emplace_back([&, t] {
        static const char* const paths[] = {"/stream", "/mjpeg", "", "/still.jpg", "/"};
        Noise noise{t};
        for (uint32_t i = 0; i < 10; ++i) {
          Client client(camera, paths[(t + i) % 5]);
          for (int32_t count = noise.Between(0, 3); count > 0; --count) client.Receive();
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& client : staying) ASSERT_FALSE(client->Frame().empty());
  }
}

TEST_F(ToolTest, CameraSendsRecordingsUnchangedAndPicturesInTurn) {
  FrameWalk walk;
  Walk_Add(&walk, Read_File(sample));
  std::vector<std::string> clean;
  for (WalkedFrame frame; Walk_Next(&walk, &frame);) clean.emplace_back(frame.bytes.begin(), frame.bytes.end());
  const RunningCamera recorded("--fps 120 " + sample);
  Client viewer(recorded, "");
  // In order, and repeated; a busy machine may skip some.
  for (size_t place = 0, ahead = 1; place < clean.size() + 10; place += ahead, ahead = 1) {
    for (const std::string bytes = viewer.Frame(); ahead <= clean.size() && clean[(place + ahead) % clean.size()] != bytes;)
      ++ahead;
    ASSERT_LE(ahead, clean.size() / 2);
  }
  Write("a.ppm", "P6 32 16 255\n" + std::string(size_t{32} * 16 * 3, '\x40'));
  Write("b.ppm", "P6 50 40 255\n" + std::string(size_t{50} * 40 * 3, '\x60'));
  const RunningCamera camera(folder.string() + "/a.ppm " + folder.string() + "/b.ppm");
  Client client(camera, "/stream");
  std::set<std::pair<int, int>> sizes;
  for (int i = 0; i < 100 && sizes.size() < 2; ++i, sizes.emplace(client.frame.width, client.frame.height)) client.Frame();
  EXPECT_EQ(sizes, (std::set<std::pair<int, int>>{{32, 16}, {48, 32}}));
}

TEST_F(ToolTest, CameraChaosLosesOnlyFaultyFramesAndThoseThatACutOneSwallows) {
  const Bytes jpeg = Read_File(Data_Path("scene-q75.jpg")), jfifHeader(jpeg.begin(), jpeg.begin() + 623);
  for (const FrameForm form : {FrameForm::Compact, FrameForm::Prefixed, FrameForm::Jfif}) {
    for (const ChaosOptions& mix : {ChaosOptions{0.1, 0, 0, 1}, {0, 0.3, 0, 2}, {0, 0, 0.3, 3}, {0.1, 0.1, 0.1, 4}}) {
      Chaos chaos = Chaos_Start(mix);
      Noise noise{7};
      FrameWalk walk;
      std::set<std::string> missing;  // Of those that must arrive.
      size_t offset = 0, reach = 0;
      for (int i = 0; i < 2000; ++i) {
        Bytes body = noise.Some(static_cast<size_t>(noise.Between(500, 9500)));
        std::ranges::replace(body, 0xFF, 0xFE);
        const Bytes compact = Compact_Frame(320, 240, 50, body), prefixed = Prefixed_Frame(compact);
        const Bytes forms[] = {compact, prefixed, Joined({jfifHeader, body, {0xFF, 0xD9}})},
                    &clean = forms[static_cast<int>(form)];
        Bytes sent = clean;
        const ChaosHit hit = Chaos_Apply(&chaos, form, &sent);
        const bool any = hit.cut || hit.garbage || hit.corrupt;
        if (!any && offset >= reach) missing.emplace(clean.begin(), clean.end());
        // A cut JFIF frame swallows everything up to the next end marker, other forms as many bytes as they lack.
        if (!any && reach == SIZE_MAX) reach = 0;
        const size_t own = form == FrameForm::Jfif ? SIZE_MAX : offset + (hit.garbage ? 4096 : 0) + clean.size();
        if (hit.cut) reach = std::max(reach, own);
        offset += sent.size();
        EXPECT_TRUE(hit.cut || hit.garbage || std::equal(&clean[0], &clean[12], &sent[0]));
        Walk_Add(&walk, sent);
        for (WalkedFrame frame; Walk_Next(&walk, &frame);) missing.erase({frame.bytes.begin(), frame.bytes.end()});
      }
      EXPECT_EQ(missing.size(), 0U) << Form_Name(form) << ", seed " << mix.seed;
    }
  }
  const RunningCamera camera("--size 160x128 --fps 60 --cut 1 --garbage 1 --corrupt 1");
  Client stream(camera, "/stream"), still(camera, "/still.jpg");
  for (int i = 0; i < 5; ++i) EXPECT_FALSE(stream.Frame().empty());
  EXPECT_GT(Walk_Skipped(stream.walk), 0);
  EXPECT_TRUE(Djpeg_Reads(still.Take()));
}

TEST_F(ToolTest, CameraReportsPortsInUseAndBadInput) {
  const RunningCamera camera("");
  const std::string port = std::to_string(camera.port);
  for (const std::string option : {"--port ", "--port 0 --raw-port "})
    Expect_Failure("camera " + option + port, "can't listen on 127.0.0.1:" + port + ": Address already in use");
  Write("text", "no picture");
  Expect_Failure("camera --port 0 text", "text: not a BMP");
}

}  // namespace
