/* A screen and a window on it, for tests that show pictures. */
#pragma once

#include "platform/portable/desktop.h"

#include "platform/win32.h"

/** Sets the screen up before the window, and removes it after the window has ended. */
struct TestWindow {
  HWND handle;

  explicit TestWindow(int32_t bits, int32_t width = 320, int32_t height = 240)
      : TestWindow(Screen_Of_Depth(bits), width, height) {}
  TestWindow(const ScreenSetup& setup, int32_t width, int32_t height) {
    Screen_Set_Up(setup);
    WNDCLASSA type = {};
    type.lpfnWndProc = DefWindowProcA;
    type.lpszClassName = "velarto-test";
    RegisterClassA(&type);
    handle =
        CreateWindowExA(0, "velarto-test", "", WS_POPUP | WS_VISIBLE, 40, 30, width, height, nullptr, nullptr, nullptr, nullptr);
  }
  ~TestWindow() {
    DestroyWindow(handle);
    Screen_Remove();
  }
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;
};
