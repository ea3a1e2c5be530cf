#include "display/monitors.h"

#include "display/test_display.h"

namespace {

/** From here on the process has no monitor functions. */
void Check_Fallbacks(HWND window) {
  Rig_Fail(RigStep::FindMonitorFunction, 0, 1);
  EXPECT_EQ(Monitor_Stubs_Resolve() + Monitor_Stubs_Resolve(), 0) << "looked for once";
  const HMONITOR primary = reinterpret_cast<HMONITOR>(primaryMonitorHandle);
  const std::pair<RECT, HMONITOR> cases[] = {{{10, 10, 20, 20}, primary},         {{-5, -5, 1, 1}, primary},
                                             {{1023, 1199, 2000, 2000}, primary}, {{-20, 10, 0, 20}, nullptr},
                                             {{10, -20, 20, 0}, nullptr},         {{1024, 10, 1030, 20}, nullptr},
                                             {{10, 1200, 20, 1300}, nullptr}};
  for (const auto& [rect, monitor] : cases) {
    EXPECT_EQ(Monitor_From_Rect(&rect, 0), monitor) << rect.left << ", " << rect.top;
    EXPECT_EQ(Monitor_From_Rect(&rect, MONITOR_DEFAULTTONEAREST), primary);
  }
  Screen_Minimise(window, true);
  EXPECT_EQ(Monitor_From_Window(window, 0), primary) << "by its place when not minimised";
  Screen_Minimise(window, false);
  Rig_Move_To_Monitor(window, 1);
  EXPECT_EQ(Monitor_From_Window(window, 0), nullptr);
  JdecDisplay display = {};
  display.window = window;
  EXPECT_EQ(Window_On_Secondary_Monitor(&display), 0);

  MONITORINFOEXA info = {};
  info.cbSize = sizeof(MONITORINFO) - 1;
  EXPECT_EQ(Monitor_Get_Info(primary, &info) + Monitor_Get_Info(nullptr, &info) + Monitor_Get_Info(primary, nullptr), 0);
  for (const bool named : {false, true}) {
    info.cbSize = named ? sizeof(MONITORINFOEXA) : sizeof(MONITORINFO);
    EXPECT_EQ(Monitor_Get_Info(primary, &info), 1);
    EXPECT_EQ(info.rcMonitor.right + info.rcMonitor.bottom, info.rcWork.right + 1200);
    EXPECT_EQ(info.dwFlags, MONITORINFOF_PRIMARY);
    EXPECT_STREQ(info.szDevice, named ? "DISPLAY" : "");
  }
}

TEST(MonitorsDeathTest, WithoutTheFunctionsThereIsOneScreen) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // A process of its own, in which nothing was looked up yet.
  TestDisplay test(Screen_With(32), 64, 48);
  EXPECT_EXIT((Check_Fallbacks(test.handle), std::exit(testing::Test::HasFailure() ? 1 : 0)), testing::ExitedWithCode(0), "");
}

}  // namespace
