#include "display/monitors.h"

#include "display/machine.h"

namespace {

/** Two monitors; a display that is no more than its window. */
struct Monitors : testing::Test {
  Monitors() { display.window = machine.handle; }
  static ScreenSetup Two_Monitors() {
    ScreenSetup setup = Screen_Of_Depth(32);
    setup.adapters = 2;
    return setup;
  }
  Machine machine{Two_Monitors(), 64, 48};
  JdecDisplay display = {};
};

TEST_F(Monitors, TheWindowsMonitorIsTold) {
  EXPECT_NE(Monitor_Stubs_Resolve(), 0);
  EXPECT_EQ(Window_On_Secondary_Monitor(&display), 0);
  Screen_Move_To_Monitor(machine.handle, 1);
  EXPECT_EQ(Window_On_Secondary_Monitor(&display), 1);
  Screen_Fail(ScreenStep::GetMonitorInfo);
  EXPECT_EQ(Window_On_Secondary_Monitor(&display), 0) << "one that can't be asked is the primary one";
}

using MonitorsDeathTest = Monitors;

/** The process counts as one on a system without monitor functions from then on. */
void Check_Fallbacks(HWND window, const JdecDisplay* display) {
  Screen_Fail(ScreenStep::FindMonitorFunction, 0, 1);
  EXPECT_EQ(Monitor_Stubs_Resolve() + Monitor_Stubs_Resolve(), 0) << "looked for once";
  const HMONITOR primary = reinterpret_cast<HMONITOR>(primaryMonitorHandle);
  for (const RECT& inside : {RECT{10, 10, 20, 20}, {-5, -5, 1, 1}, {1023, 767, 2000, 2000}}) {
    EXPECT_EQ(Monitor_From_Rect(&inside, 0), primary);
  }
  for (const RECT& outside : {RECT{-20, 10, 0, 20}, {10, -20, 20, 0}, {1024, 10, 1030, 20}, {10, 768, 20, 780}}) {
    EXPECT_EQ(Monitor_From_Rect(&outside, 0), nullptr);
    EXPECT_EQ(Monitor_From_Rect(&outside, MONITOR_DEFAULTTOPRIMARY), primary);
    EXPECT_EQ(Monitor_From_Rect(&outside, MONITOR_DEFAULTTONEAREST), primary);
  }
  Screen_Minimise(window, true);
  EXPECT_EQ(Monitor_From_Window(window, 0), primary) << "by its place when not minimised";
  Screen_Minimise(window, false);
  Screen_Move_To_Monitor(window, 1);
  EXPECT_EQ(Monitor_From_Window(window, 0), nullptr);
  EXPECT_EQ(Window_On_Secondary_Monitor(display), 0);

  MONITORINFOEXA info = {};
  info.cbSize = sizeof(MONITORINFO) - 1;
  EXPECT_EQ(Monitor_Get_Info(primary, &info) + Monitor_Get_Info(nullptr, &info) + Monitor_Get_Info(primary, nullptr), 0);
  EXPECT_EQ(info.dwFlags, 0u);
  for (const bool named : {false, true}) {
    info.cbSize = named ? sizeof(MONITORINFOEXA) : sizeof(MONITORINFO);
    EXPECT_EQ(Monitor_Get_Info(primary, &info), 1);
    EXPECT_EQ(info.rcMonitor.right + info.rcMonitor.bottom, 1024 + 768);
    EXPECT_EQ(info.rcWork.right, 1024);
    EXPECT_EQ(info.dwFlags, MONITORINFOF_PRIMARY);
    EXPECT_STREQ(info.szDevice, named ? "DISPLAY" : "");
  }
}

TEST_F(MonitorsDeathTest, WithoutTheFunctionsThereIsOneScreen) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // A process of its own, in which nothing was looked up yet.
  EXPECT_EXIT(
      {
        Check_Fallbacks(machine.handle, &display);
        std::_Exit(HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
