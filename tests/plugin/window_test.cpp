#include "plugin/browser.h"

/** Who gets a message: D the default procedure, C the window's own, P the page, 1 nobody. In lower case if it restores the
 * colours that another program has changed. */
static char Receiver(HWND window, UINT number, HWND changer) {
  const HDC dc = GetDC(nullptr);
  LOGPALETTE other = {0x300, 1, {{9, 9, 9, 0}}};
  const HPALETTE before = SelectPalette(dc, CreatePalette(&other), FALSE);
  RealizePalette(dc);
  DeleteObject(SelectPalette(dc, before, FALSE));
  seen = {};
  const auto wParam = reinterpret_cast<WPARAM>(changer);
  const LPARAM lParam = number == WM_NOTIFY ? 0 : 7;
  const LRESULT result = SendMessageA(window, number, wParam, lParam);
  PALETTEENTRY entry = {};
  GetSystemPaletteEntries(dc, 10, 1, &entry);
  ReleaseDC(nullptr, dc);
  const bool whole = seen.message == number && seen.wParam == wParam && seen.lParam == lParam;
  const char who = seen.hwnd == window && result == OwnResult ? 'C' : seen.hwnd == GetParent(window) && result == 1 ? 'P' : '?';
  const char receiver = !seen.hwnd ? static_cast<char>(result == 0 ? 'D' : '0' + result) : whole ? who : '?';
  return static_cast<char>(receiver | (entry.peRed != 9 ? 0x20 : 0));
}

TEST_F(PluginTest, EachModeHandlesTheMessagesThatItShould) {
  Screen_Set_Up(Screen_Of_Depth(8));
  const HWND sibling = Page_Window(page, 0, 0, 9, 9), inside = Page_Window(sibling, 0, 0, 9, 9);
  const UINT numbers[] = {WM_PAINT,     WM_SETCURSOR,       WM_NOTIFY,        WM_COMMAND,    WM_RBUTTONDOWN,
                          WM_RBUTTONUP, WM_QUERYNEWPALETTE, EndStreamMessage, GetUrlMessage, WM_APP + 1};
  const std::tuple<uint8_t, uint8_t, std::string, std::string> modes[] = {
      {0, 0, "DDDDDDDDDDDDD", "0"}, {1, 0, "D1CCPPcCCCCCc", "101"}, {0, 1, "D1CCCCcCCCCCc", IDLE_TEXT "101"}};
  for (const auto& [left, right, receivers, signs] : modes) {
    Open(left, right, window);
    SetCursor(nullptr);
    poked = [] { SendMessageA(Rig_Dialog(), WM_CLOSE, 0, 0); };
    if (right == 1) PostMessageA(window, WM_APP, 0, 0);  // Closes the menu.
    std::string found;
    for (const UINT number : numbers) found += Receiver(window, number, nullptr);
    for (const HWND changer : {window, sibling, inside}) found += Receiver(window, WM_PALETTECHANGED, changer);
    EXPECT_EQ(found, receivers);
    netscape.version = 7;
    Receiver(window, EndStreamMessage, nullptr);
    EXPECT_EQ(asked, (std::vector<std::string>{"end", stream.url})) << "of which the first only by a browser that can";
    EXPECT_EQ(Signs(), signs);
    Stop();
    EXPECT_EQ(Receiver(window, WM_APP + 1, nullptr), 'C') << "given back";
  }
}

/** Opens the menu, does something, presses a button, closes the menu if need be. Gives which buttons were enabled. */
static std::string Menu(HWND window, int pressed, const std::function<void(HWND menu)>& action = nullptr) {
  std::string enabled;
  poked = [&] {
    const HWND menu = Rig_Dialog();
    for (const int id : {1000, 1001, 1002}) enabled += IsWindowEnabled(GetDlgItem(menu, id)) ? '1' : '0';
    if (action) action(menu);
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP}) SendDlgItemMessageA(menu, pressed, message, 0, MAKELPARAM(5, 5));
    PostMessageA(menu, WM_KEYDOWN, VK_ESCAPE, 0);
  };
  PostMessageA(window, WM_APP, 0, 0);
  SendMessageA(window, WM_RBUTTONDOWN, 0, 0);
  return enabled;
}

TEST_F(PluginTest, MenuLooksAndActsAsTheRecordingAllows) {
  Open(0, 1, window);
  Menu(window, StopButtonId, [](HWND menu) {
    std::vector<LONG> places;
    for (HWND part : {menu, GetDlgItem(menu, RecordButtonId), GetDlgItem(menu, StopButtonId), GetDlgItem(menu, CloseButtonId)}) {
      RECT place = {};
      GetWindowRect(part, &place);
      places.insert(places.end(), {place.left, place.right});
      EXPECT_TRUE(place.top == 82 && place.bottom == 102);
    }
    EXPECT_EQ(places, (std::vector{78, 147, 81, 101, 101, 121, 124, 144})) << "over the window's middle, (110, 92)";
    Pump();
    EXPECT_EQ(Rig_Window_Color(GetDlgItem(menu, RecordButtonId), 4, 4), 0x000080u) << "the diskette";
    EXPECT_EQ(Rig_Window_Color(GetDlgItem(menu, StopButtonId), 10, 10), 0x808080u) << "a square that can't be pressed";
  });
  EXPECT_EQ(Menu(window, RecordButtonId), "101") << "the square did nothing";
  EXPECT_EQ(Menu(window, StopButtonId), "011");
  Feed(Prefixed_Frame(small.compact, 0x08));
  EXPECT_EQ(Menu(window, CloseButtonId), "001") << "the camera forbids it";
  const std::string again = Menu(window, CloseButtonId, [&](HWND menu) {
    End_Instance();
    SendMessageA(menu, WM_COMMAND, RecordButtonId, 0);
    EXPECT_EQ(Rig_Dialog(), menu) << "without the instance the button does nothing";
  });
  EXPECT_EQ(again, "001") << "closing it had started nothing";
}

/** Keys and buttons that reached the page or the plug-in's window. */
static std::vector<UINT> Input_Passed(std::initializer_list<HWND> windows) {
  std::vector<UINT> passed;
  for (const UINT input : {WM_KEYDOWN, WM_CHAR, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_RBUTTONUP}) {
    for (const HWND each : windows) {
      seen = {};
      PostMessageA(each, input, 'X', 0);
      Pump();
      if (seen.message != 0) passed.push_back(seen.message);
    }
  }
  return passed;
}

TEST_F(PluginTest, AnOpenMenuKeepsKeysAndButtonsFromThePage) {
  Open(0, 1, window);
  Menu(window, CloseButtonId, [&](HWND menu) {
    EXPECT_EQ(Input_Passed({page, window}), std::vector<UINT>());
    EXPECT_FALSE(IsWindowEnabled(page));
    seen = {};
    PostMessageA(page, WM_APP + 1, 0, 0);
    Pump();
    EXPECT_EQ(seen.message, UINT{WM_APP + 1}) << "other messages come";
    EXPECT_EQ(Rig_Dialog(), menu);
  });
  EXPECT_EQ(Input_Passed({page}), (std::vector<UINT>{WM_KEYDOWN, WM_CHAR, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_RBUTTONUP}));
}
