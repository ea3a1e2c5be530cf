#include "display/context.h"

#include "display/machine.h"

namespace {

enum Form { NoDisplay, GdiForm, DirectDrawForm };

Form Form_Of(const Display& display) {
  if (!display) return NoDisplay;
  return display->useDirectDraw ? DirectDrawForm : GdiForm;
}

TEST(Context, FormAndFormatFollowTheScreen) {
  const struct {
    int32_t screen;
    bool systemMemory, swapped;
    Form form;
    int32_t format, bits;
  } cases[] = {
      {8, false, false, DirectDrawForm, PixelPalette8, 8}, {15, false, false, DirectDrawForm, PixelRgb555, 16},
      {16, false, false, DirectDrawForm, PixelRgb565, 16}, {24, false, false, DirectDrawForm, PixelRgb24, 24},
      {32, false, false, DirectDrawForm, PixelRgb32, 32},  {16, false, true, GdiForm, PixelRgb555, 16},
      {8, true, false, GdiForm, PixelPalette8, 8},         {16, true, false, GdiForm, PixelRgb555, 16},
      {24, true, false, GdiForm, PixelRgb24, 24},          {32, true, false, GdiForm, PixelRgb32, 32},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(testing::Message() << expected.screen << " bits, form " << expected.form);
    ScreenSetup setup = Screen_Of_Depth(expected.screen);
    setup.primaryInSystemMemory = expected.systemMemory;
    if (expected.swapped) std::swap(setup.redMask, setup.blueMask);
    Machine machine(setup, 320, 240);
    Display display(Display_Create(machine.handle, 320, 240));
    ASSERT_EQ(Form_Of(display), expected.form);
    EXPECT_EQ(display->pixelFormat, expected.format);
    EXPECT_EQ(display->displayBits, expected.bits);
    EXPECT_EQ(display->fpsCount, -1);
    for (const void* part : {(void*)display->offscreenSurface, (void*)display->motionCells, (void*)display->lock}) {
      EXPECT_EQ(part != nullptr, expected.form == DirectDrawForm);
    }
    const BITMAPINFOHEADER header = {40, 320, 240, 1, static_cast<WORD>(expected.bits), BI_RGB, 0, 0, 0, 240, 240};
    EXPECT_EQ(std::memcmp(&display->bitmapInfo->bmiHeader, &header, sizeof header), 0);
  }
}

TEST(Context, UnknownDepthIsToldAndRefused) {
  ScreenSetup setup;
  setup.bits = 4;
  Machine machine(setup, 320, 240);
  EXPECT_EQ(Display_Create(machine.handle, 320, 240), nullptr);
  EXPECT_EQ(Screen_Take_Messages(),
            std::vector<std::string>{"PLUGIN|Unsupported VGA adapter color format,\nplease use Control Panel to change the "
                                     "color format as:\n        8 bit ( 256 colors )\n        16 bit ( High Color)\n"
                                     "        24/32 bit ( True Color )\n"});
}

TEST(Context, EachFailingStepHasItsForm) {
  const struct {
    ScreenStep step;
    Form form;
    bool hasPrimary;  ///< The objects made so far stay.
  } cases[] = {
      {ScreenStep::SetCooperativeLevel, DirectDrawForm, true},
      {ScreenStep::LoadDirectDraw, DirectDrawForm, true},
      {ScreenStep::FindEnumerateEx, DirectDrawForm, true},
      {ScreenStep::SurfaceGetDC, DirectDrawForm, true},
      {ScreenStep::LockOffscreen, DirectDrawForm, true},
      {ScreenStep::DirectDrawCreate, GdiForm, false},
      {ScreenStep::CreatePrimary, GdiForm, false},
      {ScreenStep::DescribePrimary, GdiForm, true},
      {ScreenStep::CreateClipper, GdiForm, true},
      {ScreenStep::ClipperSetWindow, GdiForm, true},
      {ScreenStep::SetClipper, GdiForm, true},
      {ScreenStep::CreateOffscreenNull, GdiForm, true},
      {ScreenStep::CreateOffscreen, NoDisplay, false},
      {ScreenStep::CreateMutex, NoDisplay, false},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(testing::Message() << "step " << static_cast<int32_t>(expected.step));
    Machine machine(32, 64, 48);
    Screen_Fail(expected.step);
    Display display(Display_Create(machine.handle, 64, 48));
    EXPECT_GT(Screen_Calls(expected.step), 0);
    ASSERT_EQ(Form_Of(display), expected.form);
    if (!display) continue;
    EXPECT_EQ(display->primarySurface != nullptr, expected.hasPrimary);
    EXPECT_EQ(display->offscreenSurface != nullptr, expected.form == DirectDrawForm);
    Screen_Fail_Nothing();
    const Raster raster = Noise_Raster(64, 48, PixelRgb32);
    Show(display, raster);
    Expect_Shown(machine.handle, raster);
  }
}

TEST(Context, NoMemoryLeavesNothingBehind) {
  Machine machine(32, 64, 48);
  for (int32_t after = 0; after < 4; ++after) {  // The record, its bitmap header, the motion cells; then all is there.
    Screen_Fail(ScreenStep::Memory, after, 1);
    Display display(Display_Create(machine.handle, 64, 48));
    EXPECT_EQ(Form_Of(display), after < 3 ? NoDisplay : DirectDrawForm);
    EXPECT_TRUE(display || Screen_Objects_Alive() == machine.aliveAtStart) << after;
  }
}

TEST(Context, SurfaceFollowsTheLayoutTable) {
  const struct {
    int32_t width, height, posHeight, keyRow, surfaceHeight;
  } cases[] = {{640, 480, 480, 600, 1596}, {640, 240, 240, 360, 858},  {640, 960, 240, 360, 858},
               {320, 240, 240, 360, 858},  {720, 480, 480, 600, 1578}, {16, 16, 16, 136, 186}};
  for (const auto& expected : cases) {
    SCOPED_TRACE(testing::Message() << expected.width << " x " << expected.height);
    Machine machine(16, 320, 240);
    Display display(Display_Create(machine.handle, expected.width, expected.height));
    EXPECT_EQ(display->posHeight, expected.posHeight);
    EXPECT_EQ(display->posWidth, expected.width);
    EXPECT_EQ(display->keyRow, expected.keyRow);
    int32_t width = 0, height = 0, pitch = 0;
    Screen_Surface_Pixels(display->offscreenSurface, &width, &height, &pitch);
    EXPECT_EQ(width, expected.width);
    EXPECT_EQ(height, expected.surfaceHeight);
  }
}

TEST(Context, GdiNeedsSeveralAdaptersANarrowClientAndASecondaryMonitor) {
  ScreenSetup setup = Screen_Of_Depth(32);
  setup.adapters = 2;
  for (int32_t conditions = 0; conditions < 8; ++conditions) {
    Machine machine(setup, conditions & 2 ? 319 : 320, 240);
    if (conditions & 4) Screen_Move_To_Monitor(machine.handle, 1);
    if (!(conditions & 1)) Screen_Fail(ScreenStep::FindEnumerateEx);  // Then one device is all that is counted.
    Display display(Display_Create(machine.handle, 320, 240));
    EXPECT_EQ(Form_Of(display), conditions == 7 ? GdiForm : DirectDrawForm) << conditions;
  }
}

TEST(Context, AdaptersAreAddedToTheCount) {
  ScreenSetup setup = Screen_Of_Depth(32);
  setup.adapters = 3;
  Machine machine(setup, 320, 240);
  int32_t count = 10;
  EXPECT_EQ(Display_Count_Adapters(&count), DD_OK);
  EXPECT_EQ(count, 13);
  Screen_Fail(ScreenStep::FindEnumerateEx);
  EXPECT_EQ(Display_Count_Adapters(&count), DD_OK);
  EXPECT_EQ(count, 14) << "the first one only";
  Screen_Fail(ScreenStep::LoadDirectDraw);
  EXPECT_EQ(Display_Count_Adapters(&count), E_FAIL);
  EXPECT_EQ(count, 14);
}

}  // namespace
