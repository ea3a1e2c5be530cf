#include "display/present.h"

#include "display/machine.h"

#include <algorithm>

namespace {

constexpr uint32_t Blue = 0x0000FF, Green = 0x00FF00, Black = 0;

void Count_Call(HWND, uintptr_t user) { ++*reinterpret_cast<int32_t*>(user); }

/** Has the display count the frames that reach the screen. */
void Count_Frames(const Display& display, int32_t* count) {
  display->drawCallback = Count_Call;
  display->drawCallbackUser = reinterpret_cast<uintptr_t>(count);
}

ScreenSetup Screen_With(int32_t bits, bool systemMemory) {
  ScreenSetup setup = Screen_Of_Depth(bits);
  setup.primaryInSystemMemory = systemMemory;
  setup.adapters = 2;
  setup.height = 1200;
  return setup;
}

enum Road { DirectDraw, GDI, SecondaryMonitor };

TEST(Present, PictureArrivesPixelByPixel) {
  for (const int32_t bits : {15, 16, 24, 32}) {
    for (const Road road : {DirectDraw, GDI, SecondaryMonitor}) {
      for (const SIZE& size : {SIZE{64, 48}, {33, 35}, {34, 33}, {35, 41}}) {
        SCOPED_TRACE(testing::Message() << bits << " bits, road " << road << ", " << size.cx << " x " << size.cy);
        Machine machine(Screen_With(bits, road == GDI), size.cx, size.cy);
        Display display(Display_Create(machine.handle, size.cx, size.cy));
        Screen_Move_To_Monitor(machine.handle, road == SecondaryMonitor ? 1 : 0);
        const Raster raster = Noise_Raster(size.cx, size.cy, display->pixelFormat);
        Show(display, raster);
        if (bits != 16 || road != GDI) {
          Expect_Shown(machine.handle, raster);
          continue;
        }
        for (int32_t i = 0; i < std::min(size.cx, size.cy); ++i) {  // 5-5-5 pixels on a 5-6-5 screen.
          const uint32_t shown = Screen_Window_Color(machine.handle, i, i);
          const uint8_t* pixel = raster->rows[i] + 2 * i;
          EXPECT_EQ((shown >> 9 & 0x7C00) | (shown >> 6 & 0x3E0) | (shown >> 3 & 0x1F), pixel[0] | uint32_t{pixel[1]} << 8);
        }
      }
    }
  }
}

TEST(Present, TargetHeightIsFourToThreeForBroadPictures) {
  const int32_t cases[][4] = {{400, 640, 240, 300}, {400, 320, 240, 300}, {400, 352, 288, 327},
                              {32, 640, 480, 24},   {43, 640, 480, 32},   {720, 720, 480, 540},
                              {31, 16, 16, 31},     {0, 320, 240, 0},     {65535, 1, 65535, INT32_MAX}};
  for (const auto& [client, width, height, target] : cases) {
    EXPECT_EQ(Target_Height(client, width, height), target) << width << " x " << height << " in " << client;
  }
}

TEST(Present, SmallOrMinimisedWindowsGetNothing) {
  const struct {
    int32_t clientWidth, width, height;
    bool minimised, disabled, shown;
  } cases[] = {{31, 64, 64, false, false, false},  {32, 64, 64, false, false, true}, {32, 640, 480, false, false, false},
               {43, 640, 480, false, false, true}, {64, 64, 64, true, false, false}, {64, 64, 64, false, true, true}};
  for (const bool gdi : {false, true}) {
    for (const auto& expected : cases) {
      SCOPED_TRACE(testing::Message() << expected.width << " in " << expected.clientWidth << ", GDI " << gdi);
      Machine machine(Screen_With(32, gdi), expected.clientWidth, 64);
      Display display(Display_Create(machine.handle, expected.width, expected.height));
      int32_t frames = 0;
      Count_Frames(display, &frames);
      Screen_Minimise(machine.handle, expected.minimised);
      Screen_Disable(machine.handle, expected.disabled);
      const Raster raster = Plain_Raster(expected.width, expected.height, Green);
      Show(display, raster);
      EXPECT_EQ(display->lastRaster, raster.get());
      EXPECT_EQ(frames, expected.shown && !gdi ? 1 : 0);
      Screen_Minimise(machine.handle, false);
      EXPECT_EQ(Screen_Window_Color(machine.handle, 10, 10), expected.shown ? Green : Black);
    }
  }
}

TEST(Present, DirectDrawFillsTheClientAndGdiKeepsTheShape) {
  for (const bool gdi : {false, true}) {
    Machine machine(Screen_With(32, gdi), 80, 100);
    Display display(Display_Create(machine.handle, 40, 40));
    Show(display, Plain_Raster(40, 40, Green));
    EXPECT_EQ(Screen_Window_Color(machine.handle, 79, 79), Green);
    EXPECT_EQ(Screen_Window_Color(machine.handle, 79, 81), gdi ? Black : Green);
    EXPECT_EQ(Screen_Window_Color(machine.handle, 79, 99), gdi ? Black : Green);
  }
}

TEST(Present, TheMonitorIsAskedForEachFrame) {
  Machine machine(Screen_With(32, false), 40, 40);
  Display display(Display_Create(machine.handle, 40, 40));
  int32_t frames = 0;
  Count_Frames(display, &frames);
  for (const int32_t monitor : {0, 1, 0}) {
    Screen_Move_To_Monitor(machine.handle, monitor);
    const int32_t before = Screen_Calls(ScreenStep::BltPrimary);
    Show(display, Plain_Raster(40, 40, monitor ? Blue : Green));
    EXPECT_EQ(Screen_Calls(ScreenStep::BltPrimary) - before, monitor ? 0 : 1);
    EXPECT_EQ(Screen_Window_Color(machine.handle, 20, 20), monitor ? Blue : Green);
  }
  EXPECT_EQ(frames, 2);
}

TEST(Present, GdiWithoutMemoryForAlignedRowsDrawsNothing) {
  Machine machine(Screen_With(24, true), 33, 32);
  Display display(Display_Create(machine.handle, 33, 32));
  const Raster raster = Noise_Raster(33, 32, PixelRgb24);
  Screen_Fail(ScreenStep::Memory);
  Show(display, raster);
  EXPECT_EQ(Screen_Window_Color(machine.handle, 5, 5), Black);
}

enum Overlay { NoOverlay, MotionLayer, PtzBitmap, PositionBitmap };

void Switch_On(const Display& display, Overlay overlay) {
  display->ptzEnabled = overlay == PtzBitmap;
  display->ptzWidth = display->ptzHeight = 12;
  display->posEnabled = overlay == PositionBitmap;
}

/** A green frame stands in the window; a blue one comes while a step fails. */
TEST(Present, EachFailureHasItsReaction) {
  constexpr HRESULT busy = DDERR_WASSTILLDRAWING, lost = DDERR_SURFACELOST, other = DDERR_UNSUPPORTED;
  constexpr int32_t always = INT32_MAX;
  const struct {
    ScreenStep step;
    int32_t times;
    HRESULT code;
    Overlay overlay;
    bool restoreFails;
    uint32_t color;
    int32_t frames;
  } cases[] = {
      {ScreenStep::LockOffscreen, always, other, NoOverlay, false, Green, 1},
      {ScreenStep::LockWithoutPixels, always, other, NoOverlay, false, Green, 1},
      {ScreenStep::RestoreOffscreen, always, other, NoOverlay, false, Blue, 1},
      {ScreenStep::BltPrimary, 5, busy, NoOverlay, false, Blue, 1},
      {ScreenStep::BltPrimary, 1, lost, NoOverlay, false, Green, 0},
      {ScreenStep::BltPrimary, 1, lost, NoOverlay, true, Green, 0},
      {ScreenStep::BltPrimary, 1, E_FAIL, NoOverlay, false, Green, 0},
      {ScreenStep::BltPrimary, 1, other, NoOverlay, false, Green, 0},
      {ScreenStep::BltOffscreen, 5, busy, MotionLayer, false, Blue, 1},
      {ScreenStep::BltOffscreen, 3, lost, MotionLayer, false, Blue, 1},
      {ScreenStep::BltOffscreen, always, lost, MotionLayer, false, Green, 0},
      {ScreenStep::BltOffscreen, 1, lost, MotionLayer, true, Green, 0},
      {ScreenStep::BltOffscreen, 1, E_FAIL, MotionLayer, false, Green, 0},
      {ScreenStep::BltOffscreen, always, other, MotionLayer, false, Green, 0},
      {ScreenStep::BltOffscreen, always, other, PtzBitmap, false, Blue, 1},
      {ScreenStep::BltOffscreen, always, lost, PositionBitmap, false, Blue, 1},
      {ScreenStep::SurfaceGetDC, always, other, PtzBitmap, false, Blue, 1},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(testing::Message() << "step " << static_cast<int32_t>(expected.step) << ", " << expected.times << " times "
                                    << std::hex << expected.code << ", restore fails " << expected.restoreFails);
    Machine machine(32, 64, 64);
    Display display(Display_Create(machine.handle, 64, 64));
    Switch_On(display, expected.overlay);
    const int32_t mdMode = expected.overlay == MotionLayer ? 1 : 0;
    const Raster green = Plain_Raster(64, 64, Green), blue = Plain_Raster(64, 64, Blue);
    Show(display, green, mdMode);
    int32_t frames = 0;
    Count_Frames(display, &frames);
    Screen_Fail(expected.step, 0, expected.times, expected.code);
    if (expected.restoreFails) Screen_Fail(ScreenStep::RestorePrimary);
    Show(display, blue, mdMode);
    EXPECT_EQ(Screen_Window_Color(machine.handle, 32, 32), expected.color);
    EXPECT_EQ(frames, expected.frames);
    Screen_Fail_Nothing();
    Show(display, blue, mdMode);
    Expect_Shown(machine.handle, blue);
  }
}

TEST(Present, LostSurfacesComeBack) {
  Machine machine(32, 64, 64);
  Display display(Display_Create(machine.handle, 64, 64));
  EXPECT_EQ(Display_Restore(display.get()), 1) << "nothing shown yet";
  const Raster green = Plain_Raster(64, 64, Green), blue = Plain_Raster(64, 64, Blue);
  Show(display, green);
  Screen_Lose_Surfaces();
  Show(display, blue);
  Expect_Shown(machine.handle, green);  // The primary surface was found lost at the last step.
  Show(display, blue);
  Expect_Shown(machine.handle, blue);
  Screen_Lose_Surfaces();
  IDirectDrawSurface_Restore(display->primarySurface);
  Show(display, green);
  Expect_Shown(machine.handle, green);  // The off-screen surface alone costs no frame.
  for (const ScreenStep step : {ScreenStep::RestorePrimary, ScreenStep::RestoreOffscreen, ScreenStep::LockOffscreen}) {
    Screen_Fail(step, 0, 1, DDERR_UNSUPPORTED);
    EXPECT_EQ(Display_Restore(display.get()), 0) << static_cast<int32_t>(step);
  }
  EXPECT_EQ(Display_Restore(display.get()), 1);

  EXPECT_EQ(Display_Copy_Raster(nullptr, blue.get()), E_FAIL);
  EXPECT_EQ(Display_Copy_Raster(display->offscreenSurface, nullptr), E_FAIL);
  Screen_Fail(ScreenStep::LockOffscreen, 0, 1, DDERR_UNSUPPORTED);
  EXPECT_EQ(Display_Copy_Raster(display->offscreenSurface, blue.get()), DDERR_UNSUPPORTED);
}

/** Registers Count_Call in its own place, as a caller may; the lock must be free by then. */
void Register_Counter(HWND window, uintptr_t user) {
  auto* const display = reinterpret_cast<JdecDisplay*>(user);
  EXPECT_EQ(window, display->window);
  EXPECT_FALSE(ReleaseMutex(display->lock)) << "this thread is still in it";
  WaitForSingleObject(display->lock, INFINITE);
  display->drawCallback = Count_Call;
  display->drawCallbackUser = reinterpret_cast<uintptr_t>(&display->fpsCount);
  ReleaseMutex(display->lock);
}

TEST(Present, CallbackMayRegisterAnother) {
  Machine machine(32, 64, 64);
  Display display(Display_Create(machine.handle, 64, 64));
  display->drawCallback = Register_Counter;
  display->drawCallbackUser = reinterpret_cast<uintptr_t>(display.get());
  for (const int32_t count : {-1, 0, 1}) {  // The counter starts at -1.
    Show(display, Plain_Raster(64, 64, Green));
    EXPECT_EQ(display->fpsCount, count);
  }
}

/** The system refuses copies that reach past a surface, so a frame that shows has kept within. */
TEST(Present, PicturesOfAnySizeKeepToTheirSurface) {
  for (const SIZE& size : {SIZE{640, 960}, {640, 500}, {640, 16}, {640, 200}, {16, 16}, {1, 100}, {1920, 1088}}) {
    for (const Overlay overlay : {NoOverlay, MotionLayer, PtzBitmap, PositionBitmap}) {
      SCOPED_TRACE(testing::Message() << size.cx << " x " << size.cy << " overlay " << overlay);
      Machine machine(Screen_With(32, false), 640, 960);
      Display display(Display_Create(machine.handle, size.cx, size.cy));
      Switch_On(display, overlay);
      int32_t frames = 0;
      Count_Frames(display, &frames);
      Show(display, Plain_Raster(size.cx, size.cy, Green), overlay == MotionLayer ? 1 : 0);
      EXPECT_EQ(frames, 1);
      const int32_t shown = size.cy == 960 ? 858 : 960;  // Of 960 rows the surface has 858.
      EXPECT_EQ(Screen_Window_Color(machine.handle, 639, shown - 1), Green);
      EXPECT_TRUE(shown == 960 || Screen_Window_Color(machine.handle, 639, shown) == Black);
    }
  }
}

}  // namespace
