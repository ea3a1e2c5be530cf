#include "display/statistics.h"

#include "display/test_display.h"

namespace {

TEST(Statistics, FrameRateByForm) {
  for (const bool gdi : {false, true}) {
    SCOPED_TRACE(gdi ? "GDI" : "DirectDraw");
    TestDisplay test(Screen_With(32, gdi), 320, 240);
    Rig_Set_Tick(1000);
    JdecDisplay* const display = test.Open(320, 240);
    const RasterPtr black = Plain_Raster(320, 240, Black);
    test.Show(black);
    EXPECT_EQ(display->fpsCount, -1) << "off at first";
    Display_Show_Statistics(display, 1);
    const auto show = [&](uint32_t tick, const char* text) {
      Rig_Set_Tick(tick);
      test.Show(black);
      Expect_Text(test, 270, 0, text);
    };
    show(1000, "0.00");  // No time, no frame.
    show(1100, "10.00");
    show(1110, "18.18");
    show(1120, "25.00");
    show(1121, "30.00");  // Above: a new period.
    EXPECT_EQ(display->fpsCount, 0);
    show(1121, "30.00");  // A frame in no time.
    EXPECT_EQ(display->fpsCount, 0);
    for (uint32_t i = 1; i <= 100; ++i) show(1121 + 100 * i, "10.00");
    show(1121 + 10100, gdi ? "30.00" : "10.00");  // The hundred and first ends the period.
    EXPECT_EQ(display->fpsCount, 0);
    EnableWindow(test.handle, FALSE);
    test.Show(black);
    EXPECT_EQ(display->fpsCount, 0) << "not counted in a disabled window";
    EnableWindow(test.handle, TRUE);
    Rig_Set_Tick(20000);
    Rig_Fail(RigStep::SurfaceGetDC);
    test.Show(black);
    EXPECT_EQ(display->fpsCount, 1);
    Rig_Real_Time();
  }
}

TEST(Statistics, BitRateInTheDirectDrawFormAlone) {
  for (const bool gdi : {false, true}) {
    TestDisplay test(Screen_With(32, gdi), 320, 240);
    JdecDisplay* const display = test.Open(320, 240);
    Display_Show_Statistics(display, 1);
    Set_OSD_Text(display, "1234.56 Kb\n");
    test.Show(Plain_Raster(320, 240, Black));
    Expect_Text(test, 240, 220, gdi ? "" : "1234.56 Kb\n");
    Set_OSD_Text(display, "9.5 Kb\n");  // Here there is room for the newline, which is drawn as well.
    test.Show(Plain_Raster(320, 240, Black));
    Expect_Text(test, 240, 220, gdi ? "" : "9.5 Kb\n");
    Set_OSD_Text(display, std::string(40, 'x').c_str());
    EXPECT_EQ(std::string(display->osdText), std::string(31, 'x'));
  }
}

}  // namespace
