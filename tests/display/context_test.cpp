#include "display/context.h"

#include "display/test_display.h"

namespace {

using enum RigStep;

TEST(Context, UnknownScreensAreToldOrLeftToGdi) {
  ScreenSetup setup = Screen_Of_Depth(16);
  std::swap(setup.redMask, setup.blueMask);
  TestDisplay swapped(setup, 320, 240);
  ASSERT_EQ(Form_Of(swapped.Open(320, 240)), GdiForm);
  EXPECT_EQ(swapped.display->pixelFormat, PixelRgb555);
  setup.bits = 4;
  Screen_Set_Up(setup);
  EXPECT_EQ(Form_Of(swapped.Open(320, 240)), NoDisplay);
  EXPECT_EQ(Rig_Take_Messages().size(), 1u);
}

TEST(Context, EachFailingStepHasItsForm) {
  const std::pair<DisplayForm, std::vector<RigStep>> cases[] = {
      {DirectDrawForm, {FindEnumerateEx, SurfaceGetDC, LockOffscreen}},
      {GdiForm,
       {LoadDirectDraw, FindDirectDrawCreate, DirectDrawCreate, SetCooperativeLevel, CreatePrimary, DescribePrimary,
        CreateClipper, ClipperSetWindow, SetClipper, CreateOffscreenNull}},
      {NoDisplay, {CreateOffscreen, CreateMutex, Memory}}};
  for (const auto& [form, steps] : cases) {
    for (const RigStep step : steps) {
      SCOPED_TRACE(testing::Message() << "step " << static_cast<int32_t>(step));
      TestDisplay test(32, 64, 48);
      Rig_Fail(step);
      const JdecDisplay* display = test.Open(64, 48);
      EXPECT_GT(Rig_Calls(step), 0);
      ASSERT_EQ(Form_Of(display), form);
      if (!display) continue;
      const bool early = std::find(steps.begin(), steps.end(), DescribePrimary) > std::find(steps.begin(), steps.end(), step);
      EXPECT_EQ(display->primarySurface == nullptr, form == GdiForm && early) << "what was made stays";
      EXPECT_EQ(display->offscreenSurface != nullptr, form == DirectDrawForm);
      Rig_Fail_Nothing();
      const RasterPtr raster = Noise_Raster(64, 48, 32);
      test.Show(raster);
      test.Expect_Shown(raster);
    }
  }
  for (int32_t after = 1; after < 4; ++after) {  // Memory for the bitmap header, the motion cells; then all is there.
    TestDisplay test(32, 64, 48);
    Rig_Fail(Memory, after, 1);
    EXPECT_EQ(Form_Of(test.Open(64, 48)), after < 3 ? NoDisplay : DirectDrawForm);
  }
}

TEST(Context, GdiNeedsSeveralAdaptersANarrowClientAndASecondaryMonitor) {
  for (int32_t conditions = 0; conditions < 8; ++conditions) {
    TestDisplay test(Screen_With(32), conditions & 2 ? 319 : 320, 240);
    if (conditions & 4) Rig_Move_To_Monitor(test.handle, 1);
    if (!(conditions & 1)) Rig_Fail(FindEnumerateEx);  // Then one device is all that is counted.
    EXPECT_EQ(Form_Of(test.Open(320, 240)), conditions == 7 ? GdiForm : DirectDrawForm) << conditions;
    int32_t count = 10;
    EXPECT_EQ(Display_Count_Adapters(&count), DD_OK);
    EXPECT_EQ(count, conditions & 1 ? 12 : 11) << "added to what was there";
    const int32_t before = count;
    Rig_Fail(FindEnumerateEx);
    for (const RigStep missing : {FindEnumerate, LoadDirectDraw}) {
      Rig_Fail(missing);
      EXPECT_EQ(Display_Count_Adapters(&count), E_FAIL);
    }
    EXPECT_EQ(count, before);
  }
}

}  // namespace
