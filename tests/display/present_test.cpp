#include "display/present.h"

#include "display/test_display.h"

#include <algorithm>

namespace {

using enum RigStep;

enum Path { DirectDraw, GDI, SecondaryMonitor };

TEST(Present, PictureArrivesPixelByPixel) {
  const int32_t depths[][3] = {
      {8, 8, PixelPalette8}, {15, 16, PixelRgb555}, {16, 16, PixelRgb565}, {24, 24, PixelRgb24}, {32, 32, PixelRgb32}};
  for (const auto& [screen, bits, format] : depths) {
    for (const Path path : {DirectDraw, GDI, SecondaryMonitor}) {
      for (const auto& [width, height] : {SIZE{64, 48}, {33, 35}, {34, 33}, {35, 41}}) {
        SCOPED_TRACE(testing::Message() << screen << " bits, path " << path << ", " << width << " x " << height);
        TestDisplay test(Screen_With(screen, path == GDI), width, height);
        const JdecDisplay* display = test.Open(width, height);
        ASSERT_EQ(Form_Of(display), path == GDI ? GdiForm : DirectDrawForm);
        const bool narrowed = screen == 16 && path == GDI;  // 5-5-5 pixels on a 5-6-5 screen.
        EXPECT_EQ(display->pixelFormat, narrowed ? PixelRgb555 : format);
        EXPECT_EQ(display->displayBits, bits);
        EXPECT_EQ(display->fpsCount, -1);
        for (const void* part : {(void*)display->offscreenSurface, (void*)display->motionCells, (void*)display->lock}) {
          EXPECT_EQ(part != nullptr, path != GDI);
        }
        const BITMAPINFOHEADER header = {40, width, height, 1, static_cast<WORD>(bits), BI_RGB, 0, 0, 0, 240, 240};
        EXPECT_EQ(std::memcmp(&display->bitmapInfo->bmiHeader, &header, sizeof header), 0);

        Rig_Move_To_Monitor(test.handle, path == SecondaryMonitor ? 1 : 0);
        const RasterPtr raster = Noise_Raster(width, height, bits);
        if (raster->pitch % 4 != 0 && path != DirectDraw) {
          Rig_Fail(Memory, 0, 1);
          test.Show(raster);
          EXPECT_EQ(test.Color(5, 5), Black) << "no memory for aligned rows";
        }
        test.Show(raster);
        if (!narrowed && (bits != 8 || path == DirectDraw)) test.Expect_Shown(raster);
        for (int32_t i = 0; narrowed && i < std::min(width, height); ++i) {
          const uint32_t shown = test.Color(i, i);
          const uint8_t* pixel = raster->rows[i] + 2 * i;
          EXPECT_EQ((shown >> 9 & 0x7C00) | (shown >> 6 & 0x3E0) | (shown >> 3 & 0x1F), pixel[0] | (pixel[1] & 0x7F) << 8);
        }
      }
    }
  }
}

TEST(Present, SmallOrMinimisedWindowsGetNothing) {
  const int32_t heights[][4] = {{400, 640, 240, 300}, {400, 320, 240, 300}, {400, 352, 288, 327},
                                {32, 640, 480, 24},   {43, 640, 480, 32},   {720, 720, 480, 540},
                                {31, 16, 16, 31},     {0, 320, 240, 0},     {65535, 1, 65535, INT32_MAX}};
  for (const auto& [client, width, height, target] : heights) {
    EXPECT_EQ(Target_Height(client, width, height), target) << width << " x " << height << " in " << client;
  }
  enum State { Plain, Disabled, Minimised };
  const struct {
    int32_t clientWidth, width, height;
    State state;
    bool shown;
  } cases[] = {{31, 64, 64, Plain, false},  {32, 64, 64, Plain, true},      {32, 640, 480, Plain, false},
               {43, 640, 480, Plain, true}, {64, 64, 64, Minimised, false}, {64, 64, 64, Disabled, true}};
  for (const auto& [clientWidth, width, height, state, isShown] : cases) {
    for (const bool gdi : {false, true}) {
      SCOPED_TRACE(testing::Message() << width << " in " << clientWidth << ", state " << state << ", GDI " << gdi);
      TestDisplay test(Screen_With(32, gdi), clientWidth, 64);
      test.Open(width, height);
      Screen_Minimise(test.handle, state == Minimised);
      EnableWindow(test.handle, state != Disabled);
      const RasterPtr raster = Plain_Raster(width, height, Green);
      test.Show(raster);
      EXPECT_EQ(test.display->lastRaster, raster.get());
      EXPECT_EQ(test.frames, isShown && !gdi ? 1 : 0);
      Screen_Minimise(test.handle, false);
      EXPECT_EQ(test.Color(10, 10), isShown ? Green : Black);
    }
  }
}

TEST(Present, TheMonitorIsAskedForEachFrame) {
  TestDisplay test(Screen_With(32), 80, 100);
  test.Open(40, 40);
  const uint32_t colors[][2] = {{Green, Green}, {Blue, Green}, {Red, Red}, {White, White}};
  for (int32_t i = 0; i < 4; ++i) {  // DirectDraw fills the client area, GDI keeps the picture's shape.
    Rig_Move_To_Monitor(test.handle, i % 2);
    if (i == 3) Rig_Fail(GetMonitorInfo);  // One that can't be asked is the primary one.
    test.Show(Plain_Raster(40, 40, colors[i][0]));
    EXPECT_EQ(test.Color(79, 79), colors[i][0]);
    EXPECT_EQ(test.Color(79, 80), colors[i][1]);
    EXPECT_EQ(test.frames, i > 0 ? i : 1);
  }
}

TEST(Present, GdiStretchesSmoothly) {
  TestDisplay test(Screen_With(32, true), 128, 128);
  test.Open(64, 64);
  const RasterPtr raster = Plain_Raster(64, 64, Black);
  for (int32_t y = 0; y < 64; ++y) std::fill_n(reinterpret_cast<uint32_t*>(raster->rows[y]) + 32, 32, White);
  test.Show(raster);
  EXPECT_EQ(test.Color(62, 62), Black);
  EXPECT_EQ(test.Color(65, 62), White);
  for (const int32_t x : {63, 64}) {
    EXPECT_GT(test.Color(x, 62), Black);
    EXPECT_LT(test.Color(x, 62), White);
  }
}

enum Overlay { NoOverlay, MotionLayer, PtzBitmap, PositionBitmap };

void Switch_On(JdecDisplay* display, Overlay overlay) {
  display->ptzEnabled = overlay == PtzBitmap;
  display->ptzWidth = display->ptzHeight = 12;
  display->posEnabled = overlay == PositionBitmap;
}

/** A green frame is shown; then a blue one is presented while a step fails. */
TEST(Present, EachFailureHasItsReaction) {
  constexpr HRESULT busy = DDERR_WASSTILLDRAWING, lost = DDERR_SURFACELOST, other = DDERR_UNSUPPORTED;
  constexpr int32_t always = INT32_MAX;
  const struct {
    RigStep step;
    int32_t times;
    HRESULT code;
    Overlay overlay;
    uint32_t color;
  } cases[] = {{LockOffscreen, always, other, NoOverlay, Green},
               {LockOffscreen, 1, busy, NoOverlay, Blue},
               {LockWithoutPixels, always, other, NoOverlay, Green},
               {RestoreOffscreen, always, other, NoOverlay, Blue},
               {BltPrimary, 5, busy, NoOverlay, Blue},
               {BltPrimary, 1, lost, NoOverlay, Green},
               {BltPrimary, 1, E_FAIL, NoOverlay, Green},
               {BltPrimary, 1, other, NoOverlay, Green},
               {BltOffscreen, 5, busy, MotionLayer, Blue},
               {BltOffscreen, 3, lost, MotionLayer, Blue},
               {BltOffscreen, always, lost, MotionLayer, Green},
               {BltOffscreen, 1, E_FAIL, MotionLayer, Green},
               {BltOffscreen, always, other, MotionLayer, Green},
               {BltOffscreen, always, other, PtzBitmap, Blue},
               {BltOffscreen, always, lost, PositionBitmap, Blue},
               {SurfaceGetDC, always, other, PtzBitmap, Blue}};
  for (size_t i = 0; i < 2 * std::size(cases); ++i) {
    const auto& [step, times, code, overlay, reached] = cases[i / 2];
    const bool restoreFails = i % 2 != 0;
    const uint32_t color = restoreFails && code == lost && overlay == MotionLayer ? Green : reached;
    SCOPED_TRACE(testing::Message() << "case " << i / 2 << ", restore fails " << restoreFails);
    TestDisplay test(32, 64, 64);
    Switch_On(test.Open(64, 64), overlay);
    const int32_t mdMode = overlay == MotionLayer ? 1 : 0;
    const RasterPtr green = Plain_Raster(64, 64, Green), blue = Plain_Raster(64, 64, Blue);
    test.Show(green, mdMode);
    Rig_Fail(step, 0, times, code);
    if (restoreFails) Rig_Fail(RestorePrimary);
    test.Show(blue, mdMode);
    EXPECT_EQ(test.Color(33, 33), color);  // Beside the grid's lines.
    EXPECT_TRUE(code != busy || step == LockOffscreen || Rig_Calls(step) == times + 2) << "asked again, not waited for";
    const bool shownAgain = step == LockOffscreen || step == LockWithoutPixels;
    EXPECT_EQ(test.frames, color == Blue || shownAgain ? 2 : 1);
    Rig_Fail_Nothing();
    test.Show(blue);
    test.Expect_Shown(blue);
  }
}

TEST(Present, LostSurfacesComeBack) {
  TestDisplay test(32, 64, 64);
  JdecDisplay* const display = test.Open(64, 64);
  EXPECT_EQ(Display_Restore(display), 1) << "nothing shown yet";
  const RasterPtr green = Plain_Raster(64, 64, Green), blue = Plain_Raster(64, 64, Blue);
  test.Show(green);
  Rig_Lose_Surfaces();
  test.Show(blue);
  test.Expect_Shown(green);  // The primary surface was found lost at the last step.
  test.Show(blue);
  test.Expect_Shown(blue);
  Rig_Lose_Surfaces();
  IDirectDrawSurface_Restore(display->primarySurface);
  test.Show(green);
  test.Expect_Shown(green);  // The off-screen surface alone costs no frame.
  for (const RigStep step : {RestorePrimary, RestoreOffscreen, LockOffscreen}) {
    Rig_Fail(step, 0, 1, DDERR_UNSUPPORTED);
    EXPECT_EQ(Display_Restore(display), 0) << static_cast<int32_t>(step);
  }
  EXPECT_EQ(Display_Restore(display), 1);
  EXPECT_EQ(Display_Copy_Raster(nullptr, blue.get()), E_FAIL);
  EXPECT_EQ(Display_Copy_Raster(display->offscreenSurface, nullptr), E_FAIL);
  Rig_Fail(LockOffscreen, 0, 1, DDERR_UNSUPPORTED);
  EXPECT_EQ(Display_Copy_Raster(display->offscreenSurface, blue.get()), DDERR_UNSUPPORTED);
}

TEST(Present, CallbackMayTakeItselfOut) {
  TestDisplay test(32, 64, 64);
  JdecDisplay* const shown = test.Open(64, 64);
  shown->drawCallbackUser = reinterpret_cast<uintptr_t>(shown);
  shown->drawCallback = [](HWND window, uintptr_t user) {  // Takes itself out; the lock must be free by then.
    auto* const display = reinterpret_cast<JdecDisplay*>(user);
    EXPECT_EQ(window, display->window);
    EXPECT_FALSE(ReleaseMutex(display->lock)) << "this thread is still in it";
    display->drawCallback = nullptr;
    ++display->fpsCount;
  };
  for (int32_t i = 0; i < 2; ++i) test.Show(Plain_Raster(64, 64, Green));
  EXPECT_EQ(shown->fpsCount, 0) << "counted up once, from -1";
}

/** The system refuses copies that go over a surface's edge, so a frame that is shown has stayed within. */
TEST(Present, PicturesOfAnySizeKeepToTheirSurface) {
  const int32_t cases[][4] = {{640, 480, 480, 1596}, {640, 240, 240, 858}, {640, 960, 240, 858},
                              {640, 500, 240, 858},  {640, 16, 240, 858},  {720, 480, 480, 1578},
                              {16, 16, 16, 186},     {1, 100, 100, 438},   {1920, 1088, 1088, 3402}};
  for (const auto& [width, height, posHeight, surfaceHeight] : cases) {
    for (const Overlay overlay : {NoOverlay, MotionLayer, PtzBitmap, PositionBitmap}) {
      SCOPED_TRACE(testing::Message() << width << " x " << height << " overlay " << overlay);
      TestDisplay test(Screen_With(32), 640, 960);
      JdecDisplay* const display = test.Open(width, height);
      int32_t surfaceWidth = 0, rows = 0, pitch = 0;
      Rig_Surface_Pixels(display->offscreenSurface, &surfaceWidth, &rows, &pitch);
      EXPECT_EQ((std::vector{surfaceWidth, rows, display->posWidth, display->posHeight, display->keyRow}),
                (std::vector{width, surfaceHeight, width, posHeight, posHeight + 120}));
      Switch_On(display, overlay);
      test.Show(Plain_Raster(width, height, Green), overlay == MotionLayer ? 1 : 0);
      EXPECT_EQ(test.frames, 1);
      const int32_t shown = height == 960 ? 858 : 960;  // Of 960 rows the surface has 858.
      EXPECT_EQ(test.Color(639, shown - 1), Green);
      EXPECT_TRUE(shown == 960 || test.Color(639, shown) == Black);
    }
  }
}

}  // namespace
