#include "display/machine.h"
#include "display/statistics.h"
#include "overlay/color_key.h"

#include <string>

namespace {

void Fill(IDirectDrawSurface* surface, const RECT& rect, uint32_t color) {
  HDC dc = nullptr;
  ASSERT_EQ(IDirectDrawSurface_GetDC(surface, &dc), DD_OK);
  for (LONG y = rect.top; y < rect.bottom; ++y) {
    for (LONG x = rect.left; x < rect.right; ++x) SetPixel(dc, x, y, RGB(color >> 16, color >> 8 & 255, color & 255));
  }
  IDirectDrawSurface_ReleaseDC(surface, dc);
}

/** A display of 320 by 240 at 1:1, on 32 bits, and a green picture. */
struct Overlays : testing::Test {
  Machine machine{32, 320, 240};
  JdecDisplay* const display = machine.Open(320, 240);
  const Raster green = Plain_Raster(320, 240, Green);

  void Paint(const RECT& rect, uint32_t color) { Fill(display->offscreenSurface, rect, color); }
  int32_t Count(uint32_t color, const RECT& part = {0, 0, 320, 240}) const {
    int32_t count = 0;
    for (LONG y = part.top; y < part.bottom; ++y) {
      for (LONG x = part.left; x < part.right; ++x) count += machine.Color(x, y) == color;
    }
    return count;
  }
};

TEST_F(Overlays, OneLayerAtATimeCoversWhereItIsNotBlack) {
  const std::pair<RECT, uint32_t> layers[] = {{{0, 240, 320, 480}, White}, {{0, 498, 100, 548}, Red}, {{0, 618, 320, 858}, Blue}};
  for (const auto& [rect, color] : layers) {
    Paint(rect, color);
    Paint({rect.left + 10, rect.top + 20, rect.left + 20, rect.top + 30}, Black);
  }
  display->ptzWidth = 100;
  display->ptzHeight = 50;
  const RECT whole = {0, 0, 320, 240}, aboveCorner = {220, 170, 320, 220};
  const struct {
    int32_t mdMode, ptz, pos;
    uint32_t color;
    RECT rect;
  } cases[] = {{1, 1, 1, White, whole},     {2, 0, 1, White, whole}, {0, 1, 1, Red, aboveCorner},
               {0, 1, 0, Red, aboveCorner}, {0, 0, 1, Blue, whole},  {0, 0, 0, White, {}}};
  for (const auto& [mdMode, ptz, pos, color, rect] : cases) {
    SCOPED_TRACE(testing::Message() << mdMode << ptz << pos);
    display->ptzEnabled = ptz;
    display->posEnabled = pos;
    machine.Show(green, mdMode);
    const int32_t area = (rect.right - rect.left) * (rect.bottom - rect.top), covered = area ? area - 100 : 0;
    EXPECT_EQ(Count(color, rect), covered);
    EXPECT_EQ(Count(Green), 320 * 240 - covered) << "also where the key's colour was converted";
    EXPECT_EQ(Count(Green, {rect.left + 10, rect.top + 20, rect.left + 20, rect.top + 30}), 100);
  }
}

TEST(PositionBitmap, HigherThanThePictureIsCutAtTheTop) {
  Machine machine(32, 640, 200);
  machine.Open(640, 200)->posEnabled = 1;
  Fill(machine.display->offscreenSurface, {0, 618 + 40, 640, 618 + 41}, Red);  // The strip's 240 rows end with the picture's.
  machine.Show(Plain_Raster(640, 200, Green));
  EXPECT_EQ(machine.Color(639, 0), Red);
  EXPECT_EQ(machine.Color(639, 1), Green);
}

TEST_F(Overlays, MotionSearchDrawsCaptionAndOutline) {
  constexpr int32_t outline = 2 * 100 + 2 * 48;
  display->motionRect = {100, 100, 200, 150};
  std::strcpy(display->motionString, "MOVE");
  const auto reds = [&](int32_t enabled, int32_t mdMode) {
    display->motionSearchEnabled = enabled;
    machine.Show(green, mdMode);
    return Count(Red);
  };
  EXPECT_EQ(reds(0, 0), 0);
  EXPECT_GT(reds(1, 0), outline);
  EXPECT_EQ(Count(Red, {100, 100, 200, 150}), outline);
  EXPECT_EQ(Count(Green, {101, 101, 199, 149}), 98 * 48) << "one pixel wide, not filled";
  EXPECT_GT(Count(Red, {120, 5, 160, 45}), 40) << "two letters left of the middle";
  EXPECT_GT(Count(Red, {160, 5, 200, 45}), 40) << "and two right of it";
  EXPECT_EQ(Count(Green, {0, 0, 115, 50}) + Count(Green, {205, 0, 320, 50}), 2 * 115 * 50);

  Paint({0, 240, 320, 480}, White);
  EXPECT_EQ(reds(1, 1), 0) << "the layer lies above";
  std::memset(display->motionString, 'X', sizeof display->motionString - 1);
  EXPECT_EQ(reds(1, 0), outline) << "a caption too wide lands outside";
  Screen_Fail(ScreenStep::SurfaceGetDC);
  EXPECT_EQ(reds(1, 0), 0);
  EXPECT_EQ(Count(Green), 320 * 240) << "the frame itself goes on";
}

TEST(ColorKey, ColoursAreSampledInEachDepth) {
  const uint32_t cases[][4] = {
      {15, 0x7C00, 0x7FFF, 0x3E0}, {16, 0xF800, 0xFFFF, 0x7E0}, {24, Red, White, Green}, {32, Red, White, Green}};
  for (const auto& [bits, red, white, green] : cases) {
    for (const int32_t width : {320, 640}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      Machine machine(static_cast<int32_t>(bits), 320, 240);
      IDirectDrawSurface* const surface = machine.Open(width, 240)->offscreenSurface;
      Fill(surface, {0, 497, 1, 498}, Red);
      Fill(surface, {width == 640 ? 2 : 1, 497, 3, 498}, Green);
      Fill(surface, {0, 0, 2, 1}, White);
      mdColor = 5;
      const auto sample = [&](COLORREF color) { return Sample_Colors(surface, color, machine.display->keyRow); };
      EXPECT_EQ(sample(RGB(255, 0, 0)), red);
      EXPECT_EQ(sample(CLR_INVALID), white) << "put back";
      EXPECT_EQ((std::vector<uint32_t>{mdColorFirst, mdColorSecond, mdColor}), (std::vector{red, green, red}));
      Screen_Fail(ScreenStep::LockOffscreen, 0, 4, DDERR_WASSTILLDRAWING);
      EXPECT_EQ(sample(RGB(255, 0, 0)), red) << "busy";
      for (const ScreenStep step : {ScreenStep::LockOffscreen, ScreenStep::LockWithoutPixels, ScreenStep::SurfaceGetDC}) {
        Screen_Fail(step, 0, 1);
        EXPECT_EQ(sample(RGB(255, 0, 0)), 0xFFFFFFFF) << static_cast<int32_t>(step);
      }
    }
  }
}

TEST(Statistics, TheBitRateTextIsCutAt31Characters) {
  JdecDisplay display = {};
  for (const std::string& text : {std::string(40, 'x'), std::string("123.45 Kb\n")}) {
    Set_OSD_Text(&display, text.c_str());
    std::string expected = text.substr(0, 31);
    expected.resize(sizeof display.osdText);
    EXPECT_EQ(std::string(display.osdText, sizeof display.osdText), expected);
  }
}

}  // namespace
