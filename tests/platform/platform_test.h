/* What tests by the Windows names need on both targets: a screen of 32 bits, windows on it, and their pixels. */
#pragma once

#include "platform/win32.h"

#ifndef _WIN32
#include "platform/portable/rig.h"
#endif

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <vector>

constexpr COLORREF White = RGB(255, 255, 255), Red = RGB(255, 0, 0), Green = RGB(0, 255, 0), Blue = RGB(0, 0, 255);

/** WM_PAINT, WM_DESTROY and private messages that the test windows got. */
inline std::vector<MSG> seenMessages;

inline LRESULT CALLBACK Test_Window_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_PAINT || message == WM_DESTROY || message >= WM_APP)
    seenMessages.push_back({window, message, wParam, lParam, 0, {0, 0}});
  return DefWindowProcA(window, message, wParam, lParam);
}

/** A place and its expected colour. */
struct Spot {
  int x, y;
  COLORREF color;
};

/** A surface in memory, or the primary one for no size. Gives null when that fails. */
inline IDirectDrawSurface* Make_Surface(IDirectDraw* ddraw, DWORD width = 0, DWORD height = 0) {
  DDSURFACEDESC desc{};
  desc.dwSize = sizeof desc;
  desc.dwFlags = width > 0 ? DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT : DDSD_CAPS;
  desc.dwWidth = width;
  desc.dwHeight = height;
  desc.ddsCaps.dwCaps = width > 0 ? DDSCAPS_OFFSCREENPLAIN : DDSCAPS_PRIMARYSURFACE;
  IDirectDrawSurface* surface = nullptr;
  IDirectDraw_CreateSurface(ddraw, &desc, &surface, nullptr);
  return surface;
}

/** What a use of the surface's device context gives. */
template <typename Use>
COLORREF On_Surface(IDirectDrawSurface* surface, Use use) {
  HDC dc = nullptr;
  EXPECT_EQ(IDirectDrawSurface_GetDC(surface, &dc), DD_OK);
  const COLORREF color = use(dc);
  EXPECT_EQ(IDirectDrawSurface_ReleaseDC(surface, dc), DD_OK);
  return color;
}

class PlatformTest : public testing::Test {
 protected:
  void SetUp() override {
#ifndef _WIN32
    Screen_Set_Up(Screen_Of_Depth(32));
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
#ifndef _WIN32
    EXPECT_EQ(Rig_Objects_Alive(), 0);
    Screen_Remove();
#endif
  }

  /** Handles all messages, for the tenth of a second that a desktop may need to show what was drawn. */
  static void Pump() {
    constexpr int rounds = 10;
    for (int i = 0; i < rounds; ++i) {
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
      MSG message;
      while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
#ifndef _WIN32
      break;  // shows at once
#endif
    }
  }

  /** A white window, shown and painted. */
  HWND Make_Window(int x, int y, int width, int height) {
    windows.push_back(CreateWindowExA(0, "velarto test", "test", WS_POPUP | WS_VISIBLE, x, y, width, height, nullptr, nullptr,
                                      nullptr, nullptr));
    Pump();
    seenMessages.clear();
    return windows.back();
  }

  /** A pixel of the window, or of the screen for null. */
  static COLORREF Pixel(HWND window, int x, int y) {
    HDC dc = GetDC(window);
    const COLORREF color = GetPixel(dc, x, y);
    ReleaseDC(window, dc);
    return color;
  }

  static void Expect_Pixels(HWND window, std::initializer_list<Spot> spots) {
    for (const auto& [x, y, color] : spots) EXPECT_EQ(Pixel(window, x, y), color) << x << ", " << y;
  }

  std::vector<HWND> windows;
};
