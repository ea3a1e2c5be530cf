// Recording through the menu and the system's file dialog, and how tooltip and cursor show it.
#include "windows/shell/shell.h"

#include <regex>

namespace {

constexpr int Record = 1000, StopRecord = 1001, CloseMenu = 1002, Tool = 111;

struct ShellRecordingTest : ShellTest {
  /** The tooltip's text, asked for as the tooltip does before it shows. */
  std::string Tip() const {
    char text[256] = "";
    TOOLINFOA tool = {};
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    tool.hwnd = window;
    tool.uId = Tool;
    tool.lpszText = text;
    for (HWND tip = FindWindowExA(nullptr, nullptr, TOOLTIPS_CLASSA, nullptr); tip;
         tip = FindWindowExA(nullptr, tip, TOOLTIPS_CLASSA, nullptr)) {
      if (SendMessageA(tip, TTM_GETTOOLINFOA, 0, reinterpret_cast<LPARAM>(&tool))) {
        tool.lpszText = text;
        SendMessageA(tip, TTM_GETTEXTA, 0, reinterpret_cast<LPARAM>(&tool));
      }
    }
    return text;
  }
  /** Which of the library's two cursors the window sets, 0 for another one. */
  int Cursor() const {
    SetCursor(nullptr);
    SendMessageA(window, WM_SETCURSOR, reinterpret_cast<WPARAM>(window), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    const auto module = static_cast<HINSTANCE>(plugin.module);
    for (const int number : {101, 104}) {
      // A cursor of a module is loaded once.
      if (GetCursor() && GetCursor() == LoadCursorA(module, MAKEINTRESOURCEA(number))) return number;
    }
    return 0;
  }
  std::string Signs() const { return Tip() + " " + std::to_string(Cursor()); }
  void Right_Click() { SendMessageA(window, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(5, 5)); }
  void Start_Recording(const char* path, std::string* proposed = nullptr) {
    Then_Press(Record);
    Then_Answer_File(path, proposed);
    Right_Click();
  }
  void Stop_Recording() {
    Then_Press(StopRecord);
    Right_Click();
  }
};

TEST_F(ShellRecordingTest, TheMenuLiesOverTheMiddleAndOffersToRecord) {
  Open(0, 1);
  std::string enabled;
  steps.push_back([&] {
    const HWND menu = Find_Menu();
    if (!menu) return false;
    RECT client, place, over;
    GetClientRect(menu, &client);
    GetWindowRect(menu, &place);
    GetWindowRect(window, &over);
    EXPECT_TRUE(client.right == 69 && client.bottom == 20) << client.right << " by " << client.bottom;
    EXPECT_EQ(place.left, over.left + 160 / 2 - 32);
    EXPECT_EQ(place.top, over.top + 120 / 2 - 10);
    for (int id = Record; id <= CloseMenu; ++id) {
      const HWND button = GetDlgItem(menu, id);
      BITMAP face = {};
      GetObjectA(reinterpret_cast<HBITMAP>(SendMessageA(button, BM_GETIMAGE, IMAGE_BITMAP, 0)), sizeof face, &face);
      EXPECT_TRUE(face.bmWidth == 16 && face.bmHeight == 16) << id;
      enabled += IsWindowEnabled(button) ? '1' : '0';
    }
    return PostMessageA(menu, WM_COMMAND, IDCANCEL, 0) != 0;
  });
  Right_Click();
  EXPECT_EQ(enabled, "101");
}

TEST_F(ShellRecordingTest, AFileHoldsTheStreamFromItsFirstFrameStartOn) {
  Open(0, 1);
  Feed(frame);
  Start_Recording(nullptr);  // The user declines.
  std::string proposed;
  Bytes stream(100, 'x');
  for (int i = 0; i < 40; ++i) Append(&stream, frame);
  EXPECT_EQ(Signs(), "Right click to record. 101");
  Start_Recording("velarto-recorded.vlr", &proposed);
  EXPECT_TRUE(std::regex_match(proposed, std::regex("20\\d\\d(_\\d{1,2}){5}_\\d{1,3}\\.vlr"))) << proposed;
  EXPECT_EQ(Signs(), "Saving to file... 101");
  Feed(Bytes(700, 'y'));
  EXPECT_EQ(Signs(), "Saving to file... 101") << "no frame start yet";
  Feed(stream);
  EXPECT_EQ(Signs(), "Saving to file... 104");
  Stop_Recording();
  EXPECT_EQ(Signs(), "Right click to record. 101");
  Feed(frame);
  EXPECT_TRUE(Read_File("velarto-recorded.vlr") == Bytes(stream.begin() + 100, stream.end()));
  // A second recording replaces the file, and ends with its instance.
  Start_Recording("velarto-recorded.vlr");
  Feed(frame);
  Close();
  EXPECT_TRUE(Read_File("velarto-recorded.vlr") == frame);
}

}  // namespace
