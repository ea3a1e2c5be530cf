// The plug-in in a browser's page on Windows: registry, window, and a user who clicks in the dialogs that hold the page up.
#pragma once

#include "apps/host/browser.h"
#include "windows/library.h"

#include <commctrl.h>
#include <deque>
#include <functional>
#include <optional>

constexpr char MakerKey[] = "Software\\Orvane Instruments, Inc.\\Plugins";
constexpr char InternetKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr LRESULT OwnResult = 42;

/** Sets a value, or with no data removes it. */
inline void Set_Value(HKEY root, const char* path, const char* name, DWORD type, const std::optional<Bytes>& data) {
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyExA(root, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr), ERROR_SUCCESS);
  if (data) {
    EXPECT_EQ(RegSetValueExA(key, name, 0, type, data->data(), static_cast<DWORD>(data->size())), ERROR_SUCCESS);
  } else {
    RegDeleteValueA(key, name);
  }
  RegCloseKey(key);
}

/** A value's bytes, as the registry holds them; nothing if it isn't there. */
inline std::optional<Bytes> Value(HKEY root, const char* path, const char* name) {
  HKEY key = nullptr;
  Bytes data(4096);
  auto size = static_cast<DWORD>(data.size());
  if (RegOpenKeyExA(root, path, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return std::nullopt;
  const bool there = RegQueryValueExA(key, name, nullptr, nullptr, data.data(), &size) == ERROR_SUCCESS;
  RegCloseKey(key);
  data.resize(size);
  return there ? std::optional(data) : std::nullopt;
}

/** A text as the registry holds it. */
inline Bytes Text(const std::string& text) { return Bytes(text.c_str(), text.c_str() + text.size() + 1); }
inline Bytes Number(DWORD number) {
  const auto* const first = reinterpret_cast<const uint8_t*>(&number);
  return {first, first + sizeof number};
}

/* ---- The user ------------------------------------------------------------------------------------------------------------- */

/** What the user does next; each step is tried again until it has worked. */
inline std::deque<std::function<bool()>> steps;

inline void CALLBACK Try_Step(HWND, UINT, UINT_PTR timer, DWORD) {
  // Started anew afterwards: a timer always due would keep dialogs from being shown, which waits for an idle moment.
  KillTimer(nullptr, timer);
  if (!steps.empty() && steps.front()()) steps.pop_front();
  SetTimer(nullptr, 0, 50, Try_Step);
}

struct Search {
  const char *type, *title;  // Each may be null.
  HWND found;
};
inline BOOL CALLBACK Look_At(HWND window, LPARAM param) {
  auto* const search = reinterpret_cast<Search*>(param);
  if (!IsWindowVisible(window)) return TRUE;
  char text[256] = "", name[256] = "";
  GetClassNameA(window, name, sizeof name);
  GetWindowTextA(window, text, sizeof text);
  const auto fits = [](const char* wanted, const char* found) { return !wanted || lstrcmpiA(wanted, found) == 0; };
  if (fits(search->type, name) && fits(search->title, text)) search->found = window;
  return !search->found;
}
/** A window of this thread that is to be seen, or null. */
inline HWND Find_Top(const char* type, const char* title) {
  Search search = {type, title, nullptr};
  EnumThreadWindows(GetCurrentThreadId(), Look_At, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

/** The record menu: a dialog without a title. */
inline HWND Find_Menu() { return Find_Top("#32770", ""); }

/** The field of the file dialog that takes the name, in either of its styles. */
inline HWND Name_Field(HWND dialog) {
  const HWND combo = GetDlgItem(dialog, 0x47C);
  return combo ? combo : GetDlgItem(dialog, 0x480);
}

/** Steps: press a button of the menu; answer the file dialog with a path, or with null cancel it; close a message box. */
inline void Then_Press(int button) {
  steps.push_back([=] {
    const HWND menu = Find_Menu();
    return menu && IsWindowEnabled(GetDlgItem(menu, button)) && PostMessageA(GetDlgItem(menu, button), BM_CLICK, 0, 0);
  });
}
inline void Then_Answer_File(const char* path, std::string* proposed = nullptr) {
  steps.push_back([=] {
    const HWND dialog = Find_Top("#32770", "Save Video Stream...");
    char name[300] = "";
    if (!dialog || !GetWindowTextA(Name_Field(dialog), name, sizeof name)) return false;
    if (proposed) *proposed = name;
    if (path) SetWindowTextA(Name_Field(dialog), path);
    return PostMessageA(dialog, WM_COMMAND, path ? IDOK : IDCANCEL, 0) != 0;
  });
}
inline void Then_Close_Box(const char* title, std::string* text) {
  steps.push_back([=] {
    const HWND box = Find_Top("#32770", title);
    char shown[300] = "";
    if (!box) return false;
    for (HWND child = GetWindow(box, GW_CHILD); child && !shown[0]; child = GetWindow(child, GW_HWNDNEXT)) {
      char name[32] = "";
      GetClassNameA(child, name, sizeof name);
      if (lstrcmpiA(name, "Static") == 0) GetWindowTextA(child, shown, sizeof shown);
    }
    *text = shown;
    return PostMessageA(box, WM_COMMAND, IDOK, 0) != 0;
  });
}

/* ---- The page ------------------------------------------------------------------------------------------------------------- */

/** The messages that reached a window's own procedure, numbers and parameters. */
inline std::vector<std::array<LONG_PTR, 4>> seen;

inline LRESULT CALLBACK Page_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_RBUTTONDOWN || message == WM_RBUTTONUP || message == WM_SETCURSOR || message == WM_USER + 1) {
    seen.push_back({reinterpret_cast<LONG_PTR>(window), static_cast<LONG_PTR>(message), static_cast<LONG_PTR>(wParam), lParam});
    return OwnResult;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

inline HWND Page_Window(HWND parent, int left, int top, int width, int height) {
  WNDCLASSA type = {};
  type.lpfnWndProc = Page_Proc;
  type.hInstance = GetModuleHandleA(nullptr);
  type.lpszClassName = "velarto page";
  RegisterClassA(&type);
  const HWND window = CreateWindowExA(0, "velarto page", "", (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE, left, top, width,
                                      height, parent, nullptr, type.hInstance, nullptr);
  UpdateWindow(window);
  return window;
}

struct ShellTest : testing::Test {
  const Bytes frame = Read_File("tile-96x64-q40.jpg");
  const HWND parent = Page_Window(nullptr, 60, 50, 400, 300), window = Page_Window(parent, 20, 30, 160, 120);
  Plugin plugin = {};
  Page page = {};
  int loaded = 0;

  ShellTest() {
    steps.clear();
    seen.clear();
    static const UINT_PTR timer = SetTimer(nullptr, 0, 50, Try_Step);
    EXPECT_NE(timer, 0u);
  }
  ~ShellTest() override {
    EXPECT_TRUE(steps.empty()) << steps.size() << " steps of the user could not be done";
    Close();
    DestroyWindow(parent);
    Pump_Messages(20);
  }

  /** The maker's values of the mouse; one without a value is removed. */
  static void Set_Mouse(std::optional<uint8_t> left, std::optional<uint8_t> right) {
    const auto number = [](std::optional<uint8_t> value) { return value ? std::optional(Number(*value)) : std::nullopt; };
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Mouse_LButton", REG_DWORD, number(left));
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Mouse_RButton", REG_DWORD, number(right));
  }
  void Load(uint16_t version = 11) {
    std::string error;
    ASSERT_TRUE(Plugin_Load("velarto.dll", version, &plugin, &error)) << error;
    ++loaded;
  }
  /** Loads with these settings of the mouse, and shows an instance with an open stream in the window. */
  void Open(uint8_t left, uint8_t right, uint16_t version = 11) {
    Set_Mouse(left, right);
    Load(version);
    ASSERT_EQ(Page_Open(&page, &plugin), NPERR_NO_ERROR);
    ASSERT_EQ(Page_Set_Window(&page, window), NPERR_NO_ERROR);
    ASSERT_EQ(Page_New_Stream(&page, "video/x-orvistream", "http://camera/live"), NPERR_NO_ERROR);
  }
  void Close() {
    if (page.instance.pdata) Page_Close(&page);
    if (loaded) Plugin_Unload(&plugin);
    loaded = 0;
  }
  /** Brings bytes to the plug-in as offered, the messages running between the pieces. */
  void Feed(const Bytes& bytes) {
    for (size_t at = 0; at < bytes.size();) {
      const int32_t taken = Page_Deliver(&page, std::span(bytes).subspan(at));
      at += static_cast<size_t>(taken);
      ASSERT_GT(taken, 0) << "held back at " << at << ", though the messages have run";
      for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
    }
  }
};
