#include "platform/home.h"

namespace {

class DirectDrawTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    back = Make_Window(30, 30, 120, 100);
    front = Make_Window(60, 50, 40, 30);
    ASSERT_EQ(DirectDrawCreate(nullptr, &ddraw, nullptr), DD_OK);
    ASSERT_EQ(IDirectDraw_SetCooperativeLevel(ddraw, front, DDSCL_NORMAL), DD_OK);
    DDSURFACEDESC desc = Make_Desc(DDSD_CAPS, DDSCAPS_PRIMARYSURFACE);
    ASSERT_EQ(IDirectDraw_CreateSurface(ddraw, &desc, &primary, nullptr), DD_OK);
    ASSERT_EQ(IDirectDraw_CreateClipper(ddraw, 0, &clipper, nullptr), DD_OK);
    ASSERT_EQ(IDirectDrawClipper_SetHWnd(clipper, 0, front), DD_OK);
    ASSERT_EQ(IDirectDrawSurface_SetClipper(primary, clipper), DD_OK);
    desc = Make_Desc(DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT, DDSCAPS_OFFSCREENPLAIN);
    desc.dwWidth = 8;
    desc.dwHeight = 12;
    ASSERT_EQ(IDirectDraw_CreateSurface(ddraw, &desc, &surface, nullptr), DD_OK);
  }

  void TearDown() override {
    if (surface) IDirectDrawSurface_Release(surface);
    if (primary) IDirectDrawSurface_Release(primary);
    if (clipper) {
      EXPECT_EQ(IDirectDrawClipper_Release(clipper), 0u);
    }
    if (ddraw) {
      EXPECT_EQ(IDirectDraw_Release(ddraw), 0u);
    }
    PlatformTest::TearDown();
  }

  static DDSURFACEDESC Make_Desc(DWORD flags, DWORD caps) {
    DDSURFACEDESC desc{};
    desc.dwSize = sizeof desc;
    desc.dwFlags = flags;
    desc.ddsCaps.dwCaps = caps;
    return desc;
  }

  /** Sets the rows from first up to last to one pixel value. */
  void Fill_Rows(int first, int last, uint32_t pixel) {
    RECT rows{0, first, 8, last};
    DDSURFACEDESC desc = Make_Desc(0, 0);
    ASSERT_EQ(IDirectDrawSurface_Lock(surface, &rows, &desc, DDLOCK_WAIT, nullptr), DD_OK);
    ASSERT_GE(desc.lPitch, 32);
    for (int y = 0; y < last - first; ++y)
      for (int x = 0; x < 8; ++x) reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(desc.lpSurface) + y * desc.lPitch)[x] = pixel;
    ASSERT_EQ(IDirectDrawSurface_Unlock(surface, nullptr), DD_OK);
  }

  COLORREF Surface_Pixel(int x, int y) {
    HDC dc = nullptr;
    EXPECT_EQ(IDirectDrawSurface_GetDC(surface, &dc), DD_OK);
    const COLORREF color = GetPixel(dc, x, y);
    EXPECT_EQ(IDirectDrawSurface_ReleaseDC(surface, dc), DD_OK);
    return color;
  }

  HWND back = nullptr, front = nullptr;
  IDirectDraw* ddraw = nullptr;
  IDirectDrawSurface *primary = nullptr, *surface = nullptr;
  IDirectDrawClipper* clipper = nullptr;
};

TEST_F(DirectDrawTest, KeyedCopyWithinOneSurfaceLeavesOutTheKey) {
  Fill_Rows(0, 4, 0xFF0000);
  Fill_Rows(4, 12, 0);
  HDC dc = nullptr;
  ASSERT_EQ(IDirectDrawSurface_GetDC(surface, &dc), DD_OK);
  EXPECT_EQ(SetPixel(dc, 3, 5, Green), Green);
  ASSERT_EQ(IDirectDrawSurface_ReleaseDC(surface, dc), DD_OK);

  RECT to{0, 0, 8, 4}, from{0, 4, 8, 8};
  EXPECT_EQ(IDirectDrawSurface_Blt(surface, &to, surface, &from, DDBLT_KEYSRC, nullptr), DDERR_INVALIDPARAMS) << "no key yet";
  DDCOLORKEY key{0, 0};
  ASSERT_EQ(IDirectDrawSurface_SetColorKey(surface, DDCKEY_SRCBLT, &key), DD_OK);
  ASSERT_EQ(IDirectDrawSurface_Blt(surface, &to, surface, &from, DDBLT_KEYSRC, nullptr), DD_OK);
  EXPECT_EQ(Surface_Pixel(3, 1), Green);
  EXPECT_EQ(Surface_Pixel(2, 1), Red);
  EXPECT_EQ(Surface_Pixel(3, 0), Red);
  ASSERT_EQ(IDirectDrawSurface_Blt(surface, &to, surface, &from, 0, nullptr), DD_OK);
  EXPECT_EQ(Surface_Pixel(2, 1), 0u);
  EXPECT_EQ(Surface_Pixel(3, 1), Green);
}

TEST_F(DirectDrawTest, RefusesRectanglesOutsideAndGoesOn) {
  Fill_Rows(0, 12, 0x0000FF);
  RECT inside{0, 0, 8, 4}, below{0, 9, 8, 13}, left{-1, 0, 7, 4}, empty{2, 2, 2, 4};
  for (RECT* bad : {&below, &left, &empty}) {
    EXPECT_EQ(IDirectDrawSurface_Blt(surface, &inside, surface, bad, 0, nullptr), DDERR_INVALIDRECT);
    EXPECT_EQ(IDirectDrawSurface_Blt(surface, bad, surface, &inside, 0, nullptr), DDERR_INVALIDRECT);
  }
  EXPECT_EQ(Surface_Pixel(7, 11), Blue);
}

TEST_F(DirectDrawTest, ThePrimaryShowsInTheClippersClientOnly) {
  Fill_Rows(0, 8, 0xFF0000);
  Fill_Rows(8, 12, 0x00FF00);
  POINT origin{0, 0};
  ASSERT_TRUE(ClientToScreen(front, &origin));
  EXPECT_EQ(origin.x, 60);
  RECT client{origin.x, origin.y, origin.x + 40, origin.y + 30}, green{0, 9, 8, 11};
  RECT part{origin.x + 4, origin.y + 4, origin.x + 60, origin.y + 10}, red{0, 0, 8, 7};
  // What follows a new window at once may be lost.
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(IDirectDrawSurface_Blt(primary, &client, surface, &green, 0, nullptr), DD_OK);
    ASSERT_EQ(IDirectDrawSurface_Blt(primary, &part, surface, &red, 0, nullptr), DD_OK);
    Pump();
  }
  EXPECT_EQ(Pixel(nullptr, origin.x + 4, origin.y + 4), Red);
  EXPECT_EQ(Pixel(nullptr, origin.x + 39, origin.y + 9), Red);
  EXPECT_EQ(Pixel(nullptr, origin.x + 3, origin.y + 4), Green);
  EXPECT_EQ(Pixel(nullptr, origin.x + 10, origin.y + 10), Green);
  EXPECT_EQ(Pixel(nullptr, origin.x + 40, origin.y + 5), White) << "that is the other window";
}

}  // namespace
