#include "platform/platform_test.h"

namespace {

class DirectDrawTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    back = Make_Window(30, 30, 120, 100);
    front = Make_Window(60, 50, 40, 30);
    ASSERT_EQ(DirectDrawCreate(nullptr, &ddraw, nullptr), DD_OK);
    ASSERT_EQ(IDirectDraw_SetCooperativeLevel(ddraw, front, DDSCL_NORMAL), DD_OK);
    primary = Make_Surface(ddraw);
    surface = Make_Surface(ddraw, 8, 12);
    ASSERT_TRUE(primary && surface);
    ASSERT_EQ(IDirectDraw_CreateClipper(ddraw, 0, &clipper, nullptr), DD_OK);
    ASSERT_EQ(IDirectDrawClipper_SetHWnd(clipper, 0, front), DD_OK);
    ASSERT_EQ(IDirectDrawSurface_SetClipper(primary, clipper), DD_OK);
  }

  void TearDown() override {
    if (surface) IDirectDrawSurface_Release(surface);
    if (primary) IDirectDrawSurface_Release(primary);
    EXPECT_TRUE(!clipper || IDirectDrawClipper_Release(clipper) == 0);
    EXPECT_TRUE(!ddraw || IDirectDraw_Release(ddraw) == 0);
    PlatformTest::TearDown();
  }

  /** Sets the rows from first up to last to one pixel value. */
  void Fill_Rows(int first, int last, uint32_t pixel) {
    RECT rows{0, first, 8, last};
    DDSURFACEDESC desc{};
    desc.dwSize = sizeof desc;
    ASSERT_EQ(IDirectDrawSurface_Lock(surface, &rows, &desc, DDLOCK_WAIT, nullptr), DD_OK);
    ASSERT_GE(desc.lPitch, 32);
    for (int y = 0; y < last - first; ++y)
      for (int x = 0; x < 8; ++x) reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(desc.lpSurface) + y * desc.lPitch)[x] = pixel;
    ASSERT_EQ(IDirectDrawSurface_Unlock(surface, nullptr), DD_OK);
  }

  HWND back = nullptr, front = nullptr;
  IDirectDraw* ddraw = nullptr;
  IDirectDrawSurface *primary = nullptr, *surface = nullptr;
  IDirectDrawClipper* clipper = nullptr;
};

TEST_F(DirectDrawTest, KeyedCopyWithinOneSurfaceLeavesOutTheKey) {
  Fill_Rows(0, 4, 0xFF0000);
  Fill_Rows(4, 12, 0);
  EXPECT_EQ(On_Surface(surface, [](HDC dc) { return SetPixel(dc, 3, 5, Green); }), Green);
  RECT to{0, 0, 8, 4}, from{0, 4, 8, 8};
  EXPECT_EQ(IDirectDrawSurface_Blt(surface, &to, surface, &from, DDBLT_KEYSRC, nullptr), DDERR_INVALIDPARAMS) << "no key yet";
  DDCOLORKEY key{0, 0};
  ASSERT_EQ(IDirectDrawSurface_SetColorKey(surface, DDCKEY_SRCBLT, &key), DD_OK);
  for (const DWORD flags : {DWORD{DDBLT_KEYSRC}, DWORD{0}}) {
    ASSERT_EQ(IDirectDrawSurface_Blt(surface, &to, surface, &from, flags, nullptr), DD_OK);
    for (const POINT& at : {POINT{3, 1}, {2, 1}, {3, 0}})
      EXPECT_EQ(On_Surface(surface, [&](HDC dc) { return GetPixel(dc, at.x, at.y); }), at.x * at.y == 3 ? Green
                                                                                       : flags          ? Red
                                                                                                        : 0);
  }
}

TEST_F(DirectDrawTest, RefusesRectanglesOutsideAndGoesOn) {
  Fill_Rows(0, 12, 0x0000FF);
  RECT inside{0, 0, 8, 4}, below{0, 9, 8, 13}, left{-1, 0, 7, 4}, empty{2, 2, 2, 4};
  for (RECT* bad : {&below, &left, &empty}) {
    EXPECT_EQ(IDirectDrawSurface_Blt(surface, &inside, surface, bad, 0, nullptr), DDERR_INVALIDRECT);
    EXPECT_EQ(IDirectDrawSurface_Blt(surface, bad, surface, &inside, 0, nullptr), DDERR_INVALIDRECT);
  }
  EXPECT_EQ(On_Surface(surface, [](HDC dc) { return GetPixel(dc, 7, 11); }), Blue);
}

TEST_F(DirectDrawTest, ThePrimaryShowsInTheClippersClientOnly) {
  Fill_Rows(0, 8, 0xFF0000);
  Fill_Rows(8, 12, 0x00FF00);
  POINT origin{0, 0};
  ASSERT_TRUE(ClientToScreen(front, &origin));
  EXPECT_EQ(origin.x, 60);
  RECT client{origin.x, origin.y, origin.x + 40, origin.y + 30}, green{0, 9, 8, 11};
  RECT part{origin.x + 4, origin.y + 4, origin.x + 60, origin.y + 10}, red{0, 0, 8, 7};
  for (int i = 0; i < 3; ++i) {  // What follows a new window at once may be lost.
    ASSERT_EQ(IDirectDrawSurface_Blt(primary, &client, surface, &green, 0, nullptr), DD_OK);
    ASSERT_EQ(IDirectDrawSurface_Blt(primary, &part, surface, &red, 0, nullptr), DD_OK);
    Pump();
  }
  const int x = origin.x, y = origin.y;
  Expect_Pixels(nullptr, {{x + 4, y + 4, Red}, {x + 39, y + 9, Red}, {x + 40, y + 5, White}});
  Expect_Pixels(nullptr, {{x + 3, y + 4, Green}, {x + 10, y + 3, Green}, {x + 10, y + 10, Green}});
}

}  // namespace
