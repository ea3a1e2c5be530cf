/* A display whose surfaces the system takes away, as it does when a program takes the whole screen. */
#include "display/context.h"
#include "display/present.h"
#include "pixel/arena.h"
#include "pixel/pictures.h"
#include "platform/platform_test.h"

namespace {

using LostSurfacesTest = PlatformTest;

void Lose_Surfaces(IDirectDraw* ddraw, HWND display, HWND exclusive) {
#ifdef _WIN32
  ASSERT_EQ(IDirectDraw_SetCooperativeLevel(ddraw, exclusive, DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN), DD_OK);
  for (const WPARAM active : {FALSE, TRUE}) SendMessageA(exclusive, WM_ACTIVATEAPP, active, 0);
  ASSERT_EQ(IDirectDraw_SetCooperativeLevel(ddraw, display, DDSCL_NORMAL), DD_OK);
  DestroyWindow(exclusive);
#else
  (void)ddraw, (void)display, (void)exclusive;
  Rig_Lose_Surfaces();
#endif
}

TEST_F(LostSurfacesTest, TheyComeBackWithTheNextFrames) {
  const HWND window = Make_Window(60, 60, 64, 48);
  JdecDisplay* const display = Display_Create(window, 64, 48);
  ASSERT_TRUE(display && display->useDirectDraw);
  JdecRaster* const raster = Raster_New(64, 48, 32);
  const auto show = [&](uint32_t pixel) {
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 64; ++x) reinterpret_cast<uint32_t*>(raster->rows[y])[x] = pixel;
    Display_Present(display, raster, 0, 0, 64, 48, 0);
    Pump();
    return Pixel(nullptr, 60 + 33, 60 + 33);
  };
  show(0xFF0000);  // What follows a new window at once may be lost.
  EXPECT_EQ(show(0xFF0000), Red);
  Lose_Surfaces(display->ddraw, window, Make_Window(200, 200, 20, 20));
  for (IDirectDrawSurface* const surface : {display->primarySurface, display->offscreenSurface})
    EXPECT_EQ(IDirectDrawSurface_IsLost(surface), DDERR_SURFACELOST);
  DDSURFACEDESC desc{};
  desc.dwSize = sizeof desc;
  EXPECT_EQ(IDirectDrawSurface_Lock(display->offscreenSurface, nullptr, &desc, DDLOCK_WAIT, nullptr), DDERR_SURFACELOST);
  show(0x00FF00);  // Dropped where a lost primary surface refuses the copy; that of Wine takes it.
  EXPECT_EQ(IDirectDrawSurface_IsLost(display->offscreenSurface), DD_OK);
  EXPECT_EQ(show(0x0000FF), Blue);
  Arena_Free(raster);
  Display_Destroy(display);
}

}  // namespace
