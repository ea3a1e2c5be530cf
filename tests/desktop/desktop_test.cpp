// The plug-in on a real desktop: a virtual screen, which other programs look at and use.
#include "platform/sdl/sdl_desktop.h"
#include "plugin/browser.h"

#include <filesystem>
#include <thread>

/** Leaks of the desktop's own libraries. */
extern "C" const char* __lsan_default_suppressions() { return "leak:libdbus-1"; }

// From Xlib, whose header has names that clash with others.
extern "C" {
struct _XDisplay* XOpenDisplay(const char* name);
int XSendEvent(_XDisplay* display, unsigned long window, int propagate, long mask, long* event);
int XSync(_XDisplay* display, int discard);
int XCloseDisplay(_XDisplay* display);
}

namespace {

bool Await(const std::function<bool()>& condition) {
  for (const uint32_t start = GetTickCount(); !condition() && GetTickCount() - start < 60000;) Sleep(20);
  return condition();
}

/** The colour of a place on the screen. */
int Color_At(int x, int y) {
  char command[99];
  std::snprintf(command, sizeof command, "import -window root -crop 1x1+%d+%d -depth 8 rgb:-", x, y);
  const std::unique_ptr<FILE, Releaser<pclose>> look(popen(command, "r"));
  uint8_t rgb[3] = {};
  return fread(rgb, 1, sizeof rgb, look.get()) == sizeof rgb ? rgb[0] << 16 | rgb[1] << 8 | rgb[2] : -1;
}

void Do(const std::string& what) { EXPECT_EQ(std::system(("xdotool " + what).c_str()), 0) << what; }

/** Sends an event to a window that is gone, as a thread does that wakes the desktop too late. */
void Wake_Late() {
  _XDisplay* const other = XOpenDisplay(nullptr);
  long message[24] = {33, 0, 0, 0, 3, 1, 32};  // A client's message, window, type, format.
  XSendEvent(other, 3, 0, 0, message);
  XSync(other, 0);
  XCloseDisplay(other);
}

TEST_F(PluginTest, IsSeenAndUsedOnADesktop) {
  const std::filesystem::path folder = testing::TempDir() + "velarto-desktop-" + std::to_string(GetCurrentThreadId());
  std::filesystem::create_directory(folder);
  const std::string asker = folder / "zenity", words = folder / "words", go = folder / "go", chosen = folder / "a name.vlr";
  // The program that asks for a file: writes down its arguments, and answers when the file `go` is there.
  std::ofstream(asker) << "#!/bin/sh\nprintf '%s\\n' \"$@\" >'" + words + "'\nuntil [ -e '" + go + "' ]; do sleep 0.1; done\n" +
                              "echo '" + chosen + "'\n";
  std::filesystem::permissions(asker, std::filesystem::perms::owner_all);
  setenv("PATH", (folder.string() + ":" + getenv("PATH")).c_str(), 1);
  // The screen ends with the last program on it.
  const std::unique_ptr<FILE, Releaser<pclose>> screen(
      popen("exec Xvfb -displayfd 1 -terminate -screen 0 640x480x24 -nolisten tcp 2>/dev/null", "r"));
  char display[16] = ":";
  ASSERT_EQ(fscanf(screen.get(), "%14s", display + 1), 1) << "no virtual screen";
  setenv("DISPLAY", display, 1);
  std::string error;
  ASSERT_TRUE(Sdl_Desktop_Start(0, &error)) << error;
  Wake_Late();
  const HWND top = CreateWindowExA(0, "page", "page", WS_VISIBLE, 0, 0, 300, 200, nullptr, nullptr, nullptr, nullptr);
  const HWND shown = Page_Window(top, 60, 40, 160, 120);
  Open(0, 1, shown);
  Feed(large.jfif);
  const auto picture = (int)Rig_Window_Color(shown, 55, 54), back = 0, yellow = 0xFFFFE1, diskette = 0x80;
  std::atomic<uintptr_t> done = 0, lives = 0, cursor = 0;
  poked = [&] { lives = 1; };
  std::thread user([&] {
    const std::tuple<const char*, const char*, int, int, int> steps[] = {
        {"mousemove 0 0", "the child, in the window in the middle of the screen", 285, 234, picture},
        {"mousemove 240 190", "the tooltip, wider than the child", 220, 303, yellow},
        {"mousemove 242 190", "gone again", 220, 303, back},
        {"click 3", "the menu's buttons", 285, 234, diskette},
        {"mousemove 334 240 click 1", "closed by the cross", 285, 234, picture},
        {"search --name page windowmove 20 30 mousemove 100 100 click 3", "the menu where the window is now", 135, 124, diskette},
        {"key Escape", "closed by the key", 135, 124, picture},
        {"click 3", "and open again", 135, 124, diskette},
        {"search --name page windowfocus --sync key Escape", "closed by a key for the page below", 135, 124, picture},
        {"click 3", "and open again", 135, 124, diskette},
    };
    for (const auto& [action, sight, x, y, color] : steps) {
      Do(action);
      EXPECT_TRUE(Await([x = x, y = y, color = color] { return Color_At(x, y) == color; })) << sight;
    }
    Do("mousemove 138 130 click 1");
    EXPECT_TRUE(Await([&] { return std::filesystem::exists(words); })) << "the question";
    PostMessageA(top, WM_APP, 0, 0);
    EXPECT_TRUE(Await([&] { return lives == 1; })) << "the page, while the question is open";
    std::ofstream(go).close();
    EXPECT_TRUE(Await([&] { return std::filesystem::exists(chosen); })) << "the recording";
    Do("mousemove 100 100");
    EXPECT_TRUE(Await([&] { return cursor == 101; })) << "the hand, set by the motion";
    done = 1;
  });
  for (; !done; cursor = Screen_Cursor()) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    Pump();
  }
  user.join();
  EXPECT_EQ(std::system(("grep -qx -e '--title=Save Video Stream...' '" + words + "'").c_str()), 0);
  Stop();
  DestroyWindow(top);
  Sdl_Desktop_Stop();
  std::filesystem::remove_all(folder);
}

}  // namespace
