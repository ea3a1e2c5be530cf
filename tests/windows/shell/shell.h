// The plug-in in a browser's page on Windows: registry, window, and a user who clicks in its modal dialogs.
#pragma once

#include "windows/page.h"

#include <commctrl.h>
#include <deque>
#include <functional>
#include <optional>

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

/** A value's bytes as they are in the registry; nothing if it isn't there. */
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

/** A text as it is in the registry. */
inline Bytes Text(const std::string& text) { return Bytes(text.c_str(), text.c_str() + text.size() + 1); }
inline Bytes Number(DWORD number) {
  const auto* const first = reinterpret_cast<const uint8_t*>(&number);
  return {first, first + sizeof number};
}

/* ---- The user ------------------------------------------------------------------------------------------------------------- */

/** What the user does next; each step is repeated until it works. */
inline std::deque<std::function<bool()>> steps;

inline void CALLBACK Try_Step(HWND, UINT, UINT_PTR timer, DWORD) {
  // Set again afterwards: a dialog is shown when no message is left, and a timer that is always due would prevent that.
  KillTimer(nullptr, timer);
  if (!steps.empty() && steps.front()()) steps.pop_front();
  SetTimer(nullptr, 0, 50, Try_Step);
}

/** A visible dialog of this thread with that title, or null. */
inline HWND Find_Dialog(const char* title) {
  const auto fits = [](HWND dialog) {
    return IsWindowVisible(dialog) && GetWindowThreadProcessId(dialog, nullptr) == GetCurrentThreadId();
  };
  HWND dialog = nullptr;
  do dialog = FindWindowExA(nullptr, dialog, "#32770", title);
  while (dialog && !fits(dialog));
  return dialog;
}
inline HWND Find_Menu() { return Find_Dialog(""); }

/** The name field of the file dialog, in either of its styles. */
inline HWND Name_Field(HWND dialog) {
  const HWND combo = GetDlgItem(dialog, 0x47C);
  return combo ? combo : GetDlgItem(dialog, 0x480);
}

/** Steps: press a button of the menu; answer the file dialog with a path, or cancel it with null. */
inline void Then_Press(int button) {
  steps.push_back([=] {
    const HWND menu = Find_Menu();
    return menu && IsWindowEnabled(GetDlgItem(menu, button)) && PostMessageA(GetDlgItem(menu, button), BM_CLICK, 0, 0);
  });
}
inline void Then_Answer_File(const char* path, std::string* proposed = nullptr) {
  steps.push_back([=] {
    const HWND dialog = Find_Dialog("Save Video Stream...");
    char name[300] = "";
    if (!dialog || !GetWindowTextA(Name_Field(dialog), name, sizeof name)) return false;
    if (proposed) *proposed = name;
    if (path) SetWindowTextA(Name_Field(dialog), path);
    return PostMessageA(dialog, WM_COMMAND, path ? IDOK : IDCANCEL, 0) != 0;
  });
}

/* ---- The page ------------------------------------------------------------------------------------------------------------- */

inline HWND seenBy;  // The window whose own procedure got a mouse message last.

inline LRESULT CALLBACK Page_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_RBUTTONDOWN && message != WM_RBUTTONUP) return DefWindowProcA(window, message, wParam, lParam);
  seenBy = window;
  return OwnResult;
}

struct ShellTest : testing::Test, PluginPage {
  const Bytes frame = Read_File("tile-96x64-q40.jpg");
  const HWND parent = Make_Window(Page_Proc, nullptr, 60, 50, 400, 300),
             window = Make_Window(Page_Proc, parent, 20, 30, 160, 120);

  ShellTest() {
    steps.clear();
    static const UINT_PTR timer = SetTimer(nullptr, 0, 50, Try_Step);
    EXPECT_NE(timer, 0u);
  }
  ~ShellTest() override {
    EXPECT_TRUE(steps.empty()) << steps.size() << " steps of the user could not be done";
    Close();
    DestroyWindow(parent);
    Pump_Messages(20);
  }
  /** Shows an instance in the window, with these settings of the mouse. */
  void Open(DWORD left, DWORD right) {
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Mouse_LButton", REG_DWORD, Number(left));
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Mouse_RButton", REG_DWORD, Number(right));
    Show(window);
  }
};
