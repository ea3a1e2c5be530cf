/* What only the portable layer has: other depths, guards, a desktop. Failing steps are tested where they are handled. */
#include "platform/platform_test.h"

#include <atomic>
#include <thread>

namespace {

using PortableScreenTest = PlatformTest;

TEST_F(PortableScreenTest, CopiesOverItselfDoNotRepeat) {
  for (const int32_t bits : {8, 16, 24, 32}) {
    Screen_Set_Up(Screen_Of_Depth(bits));
    IDirectDraw* ddraw = nullptr;
    ASSERT_EQ(DirectDrawCreate(nullptr, &ddraw, nullptr), DD_OK);
    EXPECT_EQ(Make_Surface(ddraw, 3, 6), nullptr) << "no level yet";
    ASSERT_EQ(IDirectDraw_SetCooperativeLevel(ddraw, nullptr, DDSCL_NORMAL), DD_OK);
    IDirectDrawSurface* surface = Make_Surface(ddraw, 3, 6);
    IDirectDraw_Release(ddraw);
    ASSERT_NE(surface, nullptr);
    const Spot spots[] = {{2, 0, Red}, {2, 1, Green}, {2, 2, Blue}, {2, 3, White}};
    for (const auto& [x, y, color] : spots)
      EXPECT_EQ(On_Surface(surface, [&, x = x, y = y, color = color](HDC dc) { return SetPixel(dc, x, y, color); }), color)
          << bits;
    RECT to{0, 2, 3, 6}, from{0, 0, 3, 4};
    ASSERT_EQ(IDirectDrawSurface_Blt(surface, &to, surface, &from, 0, nullptr), DD_OK);
    for (const auto& [x, y, color] : spots)
      EXPECT_EQ(On_Surface(surface, [&, x = x, y = y](HDC dc) { return GetPixel(dc, x, y + 2); }), color) << bits;
    EXPECT_TRUE(Rig_Guards_Whole(surface));
    int32_t width = 0, height = 0, pitch = 0;
    const_cast<uint8_t*>(Rig_Surface_Pixels(surface, &width, &height, &pitch))[3 * bits / 8] = 0;
    EXPECT_FALSE(Rig_Guards_Whole(surface)) << "a byte after the row";
    IDirectDrawSurface_Release(surface);
  }
}

TEST_F(PortableScreenTest, WindowsFollowTheScreen) {
  Screen_Set_Up(Screen_Of_Depth(15));
  HWND window = Make_Window(10, 10, 3, 2);
  int32_t width = 0, height = 0, pitch = 0;
  const uint8_t* pixels = Rig_Window_Pixels(window, &width, &height, &pitch);
  EXPECT_EQ(pitch, 8);
  EXPECT_EQ(pixels[0] | pixels[1] << 8, 0x7FFF);
  Screen_Resize_Client(window, 7, 5);
  MSG message;
  ASSERT_TRUE(PeekMessageA(&message, window, WM_SIZE, WM_SIZE, PM_REMOVE));
  EXPECT_EQ(message.lParam, MAKELPARAM(7, 5));
  EXPECT_TRUE(PeekMessageA(&message, window, WM_PAINT, WM_PAINT, PM_NOREMOVE));
  EXPECT_EQ(Rig_Window_Color(window, 6, 4), 0u);
  EXPECT_EQ(Rig_Window_Color(window, 7, 4), 0xFFFFFFFFu);

  Screen_Remove();
  EXPECT_EQ(Rig_Window_Pixels(window, &width, &height, &pitch), nullptr);
  EXPECT_EQ(GetDeviceCaps(nullptr, BITSPIXEL), 24);
}

TEST_F(PortableScreenTest, ThePrimaryDrawsOnTheWholeScreen) {
  HWND left = Make_Window(10, 10, 8, 20), right = Make_Window(18, 10, 8, 20);
  IDirectDraw* ddraw = nullptr;
  ASSERT_EQ(DirectDrawCreate(nullptr, &ddraw, nullptr), DD_OK);
  ASSERT_EQ(IDirectDraw_SetCooperativeLevel(ddraw, left, DDSCL_NORMAL), DD_OK);
  IDirectDrawSurface* primary = Make_Surface(ddraw);
  IDirectDraw_Release(ddraw);
  ASSERT_NE(primary, nullptr);
  On_Surface(primary, [](HDC dc) {
    SelectObject(dc, GetStockObject(BLACK_BRUSH));
    return static_cast<COLORREF>(Rectangle(dc, 14, 12, 20, 14) && TextOutA(dc, 14, 20, "M", 1));
  });
  Expect_Pixels(left, {{3, 2, White}, {4, 2, 0}, {7, 3, 0}});
  Expect_Pixels(right, {{0, 2, 0}, {1, 3, 0}, {2, 2, White}});
  for (HWND window : {left, right}) {
    bool inked = false;
    for (int i = 0; i < 8 * 10; ++i) inked |= Pixel(window, i % 8, 10 + i / 8) != White;
    EXPECT_TRUE(inked);
  }
  IDirectDrawSurface_Release(primary);
}

std::atomic<int> wakes, pixelChanges;

TEST_F(PortableScreenTest, TheDesktopIsToldAndWoken) {
  ScreenDesktop desktop{};
  desktop.pixelsChanged = [](HWND) { ++pixelChanges; };
  desktop.wake = [] { ++wakes; };
  desktop.pumpEvents = [](uint32_t milliseconds) {
    for (uint32_t i = 0; i < milliseconds && wakes == 0; ++i) Sleep(1);
  };
  HWND window = Make_Window(0, 0, 20, 20);
  Screen_Set_Desktop(desktop);
  EXPECT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT), WAIT_TIMEOUT);
  std::thread poster([=] { PostMessageA(window, WM_APP, 0, 0); });
  EXPECT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, INFINITE, QS_ALLINPUT), WAIT_OBJECT_0);
  poster.join();
  EXPECT_EQ(wakes, 1);
  HDC dc = GetDC(window);
  SetPixel(dc, 1, 1, Red);
  ReleaseDC(window, dc);
  EXPECT_EQ(pixelChanges, 1);
  Screen_Set_Desktop({});
}

}  // namespace
