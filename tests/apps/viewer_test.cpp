#include "apps/velarto/viewer.h"

#include "apps/tool.h"
#include "platform/portable/rig.h"

#include <sys/stat.h>

#include <functional>
#include <thread>

namespace {

/** What the test does while the viewer runs, after each change of the window's pixels and when idle. */
struct Watcher {
  HWND window = nullptr;
  int32_t changes = 0, created = 0, destroyed = 0;
  std::function<void()> onChange, onIdle;
};
Watcher watcher;

void Created(HWND window) {
  watcher.window = window;
  ++watcher.created;
}
void Pixels_Changed(HWND) {
  ++watcher.changes;
  if (watcher.onChange) watcher.onChange();
}
void Destroyed(HWND) { ++watcher.destroyed; }
void Pump(uint32_t) {
  if (watcher.onIdle) watcher.onIdle();
  Sleep(1);
}

void Press(char key) { PostMessageA(watcher.window, WM_CHAR, static_cast<WPARAM>(key), 0); }

std::string Title() {
  char title[256] = "";
  GetWindowTextA(watcher.window, title, sizeof title);
  return title;
}

/** The colours of the window where the picture is, top row first. */
std::vector<uint32_t> Shown() {
  std::vector<uint32_t> colors(320 * 240);
  Screen_Copy_Colors(watcher.window, {0, 0, 320, 240}, colors.data(), 320 * 4);
  return colors;
}

struct ViewerTest : ToolTest {
  ViewerTest() {
    watcher = {};
    Screen_Set_Up(Screen_Of_Depth(32));
    Screen_Set_Desktop({Created, nullptr, Pixels_Changed, Destroyed, Pump, nullptr});
    options.feed = {.source = sample, .framesPerSecond = 200, .loop = true};
    options.snapshots = folder;
  }
  ~ViewerTest() override {
    Screen_Set_Desktop({});
    Screen_Remove();
  }
  /** The path of a new named pipe. */
  std::string Pipe() const {
    const std::string path = folder / "pipe";
    EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
    return path;
  }
  ViewerOptions options;
};

TEST_F(ViewerTest, ShowsThePictureThatASnapshotSaves) {
  std::vector<uint32_t> shown, saved;
  std::string title;
  watcher.onChange = [&] {
    if (watcher.changes != 5) return;
    Press('s');
    shown = Shown();
    title = Title();
    Press('q');
  };
  EXPECT_EQ(Viewer_Run(options), 0);
  EXPECT_TRUE(title.starts_with(sample + " - 320x240 - quality ")) << title;
  EXPECT_EQ(watcher.created, 1);
  EXPECT_EQ(watcher.destroyed, 1);

  const std::vector<std::string> files = Pictures();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_TRUE(files[0].starts_with("velarto-20"));
  const Bytes bmp = Read_File(folder / files[0]);
  ASSERT_EQ(bmp.size(), 54u + 320 * 240 * 3);
  for (size_t i = 0; i < 320 * 240; ++i) {
    const uint8_t* const pixel = &bmp[54 + ((239 - i / 320) * 320 + i % 320) * 3];
    saved.push_back(static_cast<uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]));
  }
  EXPECT_TRUE(shown == saved);
}

TEST_F(ViewerTest, PauseHoldsTheRecording) {
  int32_t atPause = 0;
  uint32_t pausedAt = 0;
  watcher.onChange = [&] {
    if (watcher.changes == 3) Press(' ');
  };
  watcher.onIdle = [&] {
    if (pausedAt == 0 && Title().find("paused") != std::string::npos) pausedAt = GetTickCount();
    if (pausedAt == 0 || GetTickCount() - pausedAt < 100) return;
    if (atPause == 0) atPause = watcher.changes;  // The queued frames have been shown.
    if (GetTickCount() - pausedAt < 400) return;
    EXPECT_EQ(watcher.changes, atPause);
    watcher.onIdle = nullptr;
    watcher.onChange = [&] {
      if (watcher.changes > atPause + 3) Press(VK_ESCAPE);
    };
    Press(' ');
  };
  EXPECT_EQ(Viewer_Run(options), 0);
  EXPECT_GT(watcher.changes, atPause);
}

/** 30 periods have passed in the pause. Frames of the next 20 may come at once: one that waited for room, the one that waited for
 *  the pause to end, and those of the two periods that are made up for; the others don't. */
TEST_F(ViewerTest, ARecordingDoesNotRushAfterAPause) {
  options.feed.framesPerSecond = 50;
  const std::shared_ptr<Feed> feed = Feed_Start(options.feed);
  const auto take = [&](int32_t count) {
    for (FedFrame frame; count > 0; count -= Feed_Take(feed.get(), &frame)) Feed_Await(feed.get(), 1000);
  };
  take(10);
  Feed_Pause(feed.get(), true);
  Sleep(600);
  for (FedFrame queued; Feed_Take(feed.get(), &queued);) continue;
  const auto resumed = std::chrono::steady_clock::now();
  Feed_Pause(feed.get(), false);
  take(20);
  EXPECT_GE(std::chrono::steady_clock::now() - resumed, std::chrono::milliseconds((20 - 4) * 20));
  Feed_Stop(feed.get());
}

TEST_F(ViewerTest, APauseDropsTheFramesOfALiveSource) {
  options.feed = {.source = Pipe()};
  const std::shared_ptr<Feed> feed = Feed_Start(options.feed);
  const std::string stream = Read_Text(sample);
  std::ofstream camera(folder / "pipe", std::ios::binary);
  FedFrame frame;
  camera.write(stream.data(), 40000).flush();
  Feed_Await(feed.get(), 10000);
  Feed_Pause(feed.get(), true);
  EXPECT_FALSE(Feed_Take(feed.get(), &frame)) << "the one that waited";
  camera.write(&stream[40000], 40000).flush();
  Sleep(100);
  EXPECT_FALSE(Feed_Take(feed.get(), &frame)) << "those of the pause";
  Feed_Pause(feed.get(), false);
  camera.write(&stream[80000], 40000).flush();
  Feed_Await(feed.get(), 10000);
  EXPECT_TRUE(Feed_Take(feed.get(), &frame)) << "and they come again";
  Feed_Stop(feed.get());
}

/** All frames come at once and the screen is slow: of a recording each is shown, of a live source the last and a few before it.
 */
TEST_F(ViewerTest, LiveFramesAreSkippedOnASlowScreen) {
  const std::string pipe = Pipe();
  std::thread camera([&] { Write("pipe", Read_Text(sample)); });
  std::vector<uint32_t> last[2];
  int32_t changes[2] = {};
  for (const int32_t live : {0, 1}) {
    watcher.changes = 0;
    watcher.onChange = [] { Sleep(5); };
    watcher.onIdle = [&] {
      if (Title().find("ended") == std::string::npos) return;
      last[live] = Shown();
      Press('q');
    };
    options.feed = {.source = live ? pipe : sample, .framesPerSecond = 1000};
    EXPECT_EQ(Viewer_Run(options), 0);
    changes[live] = watcher.changes;
  }
  camera.join();
  EXPECT_EQ(last[0], last[1]);
  EXPECT_GE(changes[0], 120);
  EXPECT_LT(changes[1], 60);
}

/** On a paused picture: what each step must show before the next key or click. */
TEST_F(ViewerTest, OverlaysByKeysAndClicks) {
  constexpr uint32_t Red = 0xFF0000, Blue = 0x0000FF;
  options.overlays.rectangle = {100, 100, 60, 50};
  options.overlays.motionRect = {0, 0, 2, 2};
  uint32_t plain = 0;
  const auto at = [](int32_t x, int32_t y) { return Rig_Window_Color(watcher.window, x, y); };
  const auto push = [](WPARAM key, int32_t times) {
    for (; times > 0; --times) PostMessageA(watcher.window, WM_KEYDOWN, key, 0);
  };
  const struct {
    std::function<bool()> shows;
    std::function<void()> then;
  } steps[] = {
      {[] { return Title().find("paused") != std::string::npos; }, [&] { plain = at(80, 100), Press('g'); }},
      {[&] { return at(80, 100) == Red && at(101, 100) == Blue && at(102, 102) != Blue; },
       [] { PostMessageA(watcher.window, WM_LBUTTONDOWN, 0, MAKELPARAM(100, 100)); }},
      {[&] { return at(98, 98) == Red; }, [&] { push(VK_RIGHT, 1); }},
      {[&] { return at(105, 100) != Blue && at(166, 100) == Blue; }, [&] { push(VK_RIGHT, 40), push(VK_DOWN, 40); }},
      {[&] { return at(260, 210) == Blue && at(319, 239) == Blue; }, [&] { push(VK_LEFT, 1), push(VK_UP, 1); }},
      {[&] { return at(252, 183) == Blue && at(311, 210) == Blue; }, [&] { push(VK_LEFT, 40), push(VK_UP, 40); }},
      {[&] { return at(0, 20) == Blue && at(59, 49) == Blue; }, [&] { push(VK_RIGHT, 1), push(VK_DOWN, 1); }},
      {[&] { return at(8, 20) == Blue && at(67, 57) == Blue; }, [] { Press('m'); }},
      {[&] { return at(0, 0) == Red; }, [] { Press('g'); }},
      {[&] { return at(80, 100) == plain; }, [] { Press('q'); }},
  };
  size_t step = 0;
  const uint32_t start = GetTickCount();
  watcher.onChange = [&] {
    if (watcher.changes == 2) Press(' ');
  };
  watcher.onIdle = [&] {
    if (step < std::size(steps) && steps[step].shows()) steps[step++].then();
    if (GetTickCount() - start > 20000) Press('q');
  };
  EXPECT_EQ(Viewer_Run(options), 0);
  EXPECT_EQ(step, std::size(steps));
}

/** A frame of another size makes a new display. */
TEST_F(ViewerTest, OverlaysAreKeptAcrossASizeChange) {
  Write("sizes", Read_Text(Data_Path("tile-96x64-q40.jpg")) + Read_Text(Data_Path("tile-64x48-q75.jpg")));
  options.feed = {.source = folder / "sizes", .framesPerSecond = 20};
  options.overlays.layer = true;
  options.overlays.marked[1][1] = true;
  watcher.onIdle = [&] {
    if (Title().find("ended") == std::string::npos) return;
    EXPECT_EQ(Rig_Window_Color(watcher.window, 16, 5), 0xFF0000u);
    EXPECT_EQ(Rig_Window_Color(watcher.window, 18, 18), 0xFF0000u);
    EXPECT_NE(Title().find("64x48"), std::string::npos);
    Press('q');
  };
  EXPECT_EQ(Viewer_Run(options), 0);
}

TEST_F(ViewerTest, FullScreenAndBackAndResized) {
  RECT client = {};
  watcher.onChange = [&] {
    GetClientRect(watcher.window, &client);
    if (watcher.changes == 2) Press('f');
    if (client.right == 1024) {
      EXPECT_EQ(client.bottom, 768);
      EXPECT_TRUE(GetWindowLongPtrA(watcher.window, GWL_STYLE) & static_cast<LONG_PTR>(WS_POPUP));
      EXPECT_NE(Rig_Window_Color(watcher.window, 1000, 740), 0u);
      watcher.onChange = [&] {
        GetClientRect(watcher.window, &client);
        if (client.right == 320) Screen_Resize_Client(watcher.window, 500, 400);
        if (client.right == 500) Press('q');
      };
      Press('f');
    }
  };
  EXPECT_EQ(Viewer_Run(options), 0);
  EXPECT_EQ(client.right, 500);
  EXPECT_EQ(client.bottom, 400);
}

TEST_F(ViewerTest, EndsByItselfAndReportsFailures) {
  options.feed.loop = false;
  options.frames = 7;
  EXPECT_EQ(Viewer_Run(options), 0);
  EXPECT_GE(watcher.changes, 7);

  options.frames = 1000;  // More than there are: the end of the source ends it.
  options.feed.framesPerSecond = 1000;
  EXPECT_EQ(Viewer_Run(options), 0);

  testing::internal::CaptureStderr();
  options.feed.source = folder;
  EXPECT_EQ(Viewer_Run(options), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "velarto: " + folder.string() + " is a directory\n");
  EXPECT_EQ(watcher.created, 2);

  // Without any data a window opens nevertheless, and quits at once.
  options.feed.source = Pipe();
  uint32_t pressed = 0;
  watcher.onIdle = [&] {
    if (watcher.created == 3 && pressed == 0) Press('q'), pressed = GetTickCount();
  };
  EXPECT_EQ(Viewer_Run(options), 0);
  EXPECT_NE(pressed, 0u);
  EXPECT_LT(GetTickCount() - pressed, 1000u);
  watcher.onIdle = nullptr;

  Rig_Fail(RigStep::CreateOffscreen);
  options.feed.source = sample;
  EXPECT_EQ(Viewer_Run(options), 1);
}

}  // namespace
