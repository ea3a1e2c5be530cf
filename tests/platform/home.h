/* What the tests of the Windows names need on either home: a screen of 32 bits, windows on it, and its pixels back. */
#pragma once

#include "platform/win32.h"

#ifndef _WIN32
#include "platform/portable/screen.h"
#endif

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

struct SeenMessage {
  HWND window;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
};
/** What the test windows got, WM_PAINT and the messages that the tests post. */
inline std::vector<SeenMessage> seenMessages;

inline LRESULT CALLBACK Test_Window_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_PAINT || message == WM_CHAR || message == WM_DESTROY || message >= WM_APP)
    seenMessages.push_back({window, message, wParam, lParam});
  return DefWindowProcA(window, message, wParam, lParam);
}

/** Handles all messages there are, and on a real desktop gives it the time to show what was drawn. */
inline void Pump() {
#ifdef _WIN32
  constexpr DWORD settling = 100;
#else
  constexpr DWORD settling = 0;
#endif
  const DWORD start = GetTickCount();
  do {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, settling / 10, QS_ALLINPUT);
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
  } while (GetTickCount() - start < settling);
}

class PlatformTest : public testing::Test {
 protected:
  void SetUp() override {
#ifndef _WIN32
    Screen_Set_Up(Screen_Of_Depth(32));
    objectsBefore = Screen_Objects_Alive();
#endif
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = Test_Window_Proc;
    windowClass.lpszClassName = "velarto test";
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    RegisterClassA(&windowClass);
  }

  void TearDown() override {
    for (HWND window : windows)
      if (IsWindow(window)) DestroyWindow(window);
    Pump();
    seenMessages.clear();
#ifndef _WIN32
    EXPECT_EQ(Screen_Objects_Alive(), objectsBefore);
    Screen_Remove();
#endif
  }

  /** A white window, shown and painted. */
  HWND Make_Window(int x, int y, int width, int height) {
    HWND window = CreateWindowExA(0, "velarto test", "test", WS_POPUP | WS_VISIBLE, x, y, width, height, nullptr, nullptr,
                                  nullptr, nullptr);
    windows.push_back(window);
    Pump();
    seenMessages.clear();
    return window;
  }

  /** A pixel of the window, or of the screen for null. */
  static COLORREF Pixel(HWND window, int x, int y) {
    HDC dc = GetDC(window);
    const COLORREF color = GetPixel(dc, x, y);
    ReleaseDC(window, dc);
    return color;
  }

  std::vector<HWND> windows;
  int32_t objectsBefore = 0;
};

constexpr COLORREF White = RGB(255, 255, 255), Red = RGB(255, 0, 0), Green = RGB(0, 255, 0), Blue = RGB(0, 0, 255);
