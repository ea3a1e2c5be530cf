#include "display/machine.h"
#include "display/statistics.h"
#include "overlay/color_key.h"

#include <string>

namespace {

constexpr uint32_t Blue = 0x0000FF, Green = 0x00FF00, Red = 0xFF0000, White = 0xFFFFFF, Key = 0;

/** Fills a rectangle of a surface of any depth with a pixel value. */
void Fill(IDirectDrawSurface* surface, const RECT& rect, uint32_t pixel) {
  DDSURFACEDESC locked = {};
  locked.dwSize = sizeof locked;
  ASSERT_EQ(IDirectDrawSurface_Lock(surface, nullptr, &locked, DDLOCK_WAIT, nullptr), DD_OK);
  const LONG bytes = static_cast<LONG>(locked.ddpfPixelFormat.dwRGBBitCount / 8);
  for (LONG y = rect.top; y < rect.bottom; ++y) {
    auto* const row = static_cast<uint8_t*>(locked.lpSurface) + y * locked.lPitch;
    for (LONG x = rect.left; x < rect.right; ++x) std::memcpy(row + x * bytes, &pixel, static_cast<size_t>(bytes));
  }
  IDirectDrawSurface_Unlock(surface, nullptr);
}

/** A display of 320 by 240 at 1:1, on 32 bits, and a green picture. */
struct Overlays : testing::Test {
  Machine machine{32, 320, 240};
  Display display{Display_Create(machine.handle, 320, 240)};
  Raster green = Plain_Raster(320, 240, Green);

  void Paint(const RECT& rect, uint32_t color) { Fill(display->offscreenSurface, rect, color); }
  uint32_t Color(int32_t x, int32_t y) const { return Screen_Window_Color(machine.handle, x, y); }
  int32_t Red_Pixels(const RECT& part) const {
    int32_t count = 0;
    for (LONG y = part.top; y < part.bottom; ++y) {
      for (LONG x = part.left; x < part.right; ++x) count += Color(x, y) == Red;
    }
    return count;
  }
};

TEST_F(Overlays, MotionLayerCoversWhereItIsNotBlack) {
  Paint({0, 240, 320, 480}, Key);
  Paint({100, 240 + 50, 110, 240 + 60}, Red);
  Show(display, green, 1);
  EXPECT_EQ(Red_Pixels({100, 50, 110, 60}), 100);
  EXPECT_EQ(Red_Pixels({0, 0, 320, 240}), 100);
  Show(display, green, 0);
  EXPECT_EQ(Red_Pixels({0, 0, 320, 240}), 0) << "the layer goes with its mode";
}

TEST_F(Overlays, PtzBitmapStandsAboveTheLowerRightCorner) {
  Paint({0, 498, 100, 548}, Red);
  Paint({10, 508, 20, 518}, Key);
  display->ptzEnabled = 1;
  display->ptzWidth = 100;
  display->ptzHeight = 50;
  Show(display, green);
  EXPECT_EQ(Red_Pixels({220, 170, 320, 220}), 100 * 50 - 10 * 10);
  EXPECT_EQ(Red_Pixels({0, 0, 320, 240}), 100 * 50 - 10 * 10);
  EXPECT_EQ(Color(230, 180), Green) << "black is the key";
  EXPECT_EQ(Color(0, 0), Green) << "the pixel that converts the key's colour is put back";
}

TEST_F(Overlays, OneLayerAtATime) {
  Paint({0, 240, 320, 480}, White);
  Paint({0, 498, 320, 618}, Red);
  Paint({0, 618, 320, 858}, Blue);
  display->ptzWidth = display->ptzHeight = 40;
  const struct {
    int32_t mdMode, ptz, pos;
    uint32_t atPtz, elsewhere;
  } cases[] = {{1, 1, 1, White, White}, {2, 0, 1, White, White}, {0, 1, 1, Red, Green},
               {0, 1, 0, Red, Green},   {0, 0, 1, Blue, Blue},   {0, 0, 0, Green, Green}};
  for (const auto& expected : cases) {
    display->ptzEnabled = expected.ptz;
    display->posEnabled = expected.pos;
    Show(display, green, expected.mdMode);
    EXPECT_EQ(Color(300, 200), expected.atPtz) << expected.mdMode << expected.ptz << expected.pos;
    EXPECT_EQ(Color(0, 0), expected.elsewhere) << expected.mdMode << expected.ptz << expected.pos;
    EXPECT_EQ(Color(319, 239), expected.elsewhere) << expected.mdMode << expected.ptz << expected.pos;
  }
}

TEST(PositionBitmap, HigherThanThePictureIsCutAtTheTop) {
  Machine machine(32, 640, 200);
  Display display(Display_Create(machine.handle, 640, 200));
  Fill(display->offscreenSurface, {0, 618 + 40, 640, 618 + 41}, Red);  // The strip's 240 rows end with the picture's 200.
  display->posEnabled = 1;
  Show(display, Plain_Raster(640, 200, Green));
  EXPECT_EQ(Screen_Window_Color(machine.handle, 639, 0), Red);
  EXPECT_EQ(Screen_Window_Color(machine.handle, 639, 1), Green);
}

TEST_F(Overlays, MotionSearchDrawsCaptionAndOutline) {
  display->motionRect = {100, 100, 200, 150};
  std::strcpy(display->motionString, "MOVE");
  Show(display, green);
  EXPECT_EQ(Red_Pixels({0, 0, 320, 240}), 0);

  display->motionSearchEnabled = 1;
  Show(display, green);
  EXPECT_EQ(Red_Pixels({0, 50, 320, 240}), 2 * 100 + 2 * 48) << "an outline, one pixel wide";
  for (const POINT& corner : {POINT{100, 100}, {199, 100}, {100, 149}, {199, 149}}) EXPECT_EQ(Color(corner.x, corner.y), Red);
  EXPECT_EQ(Color(150, 125), Green) << "not filled";
  EXPECT_GT(Red_Pixels({120, 5, 160, 45}), 40) << "two letters left of the middle";
  EXPECT_GT(Red_Pixels({160, 5, 200, 45}), 40) << "and two right of it";
  EXPECT_EQ(Red_Pixels({0, 0, 115, 50}) + Red_Pixels({205, 0, 320, 50}), 0);

  Paint({0, 240, 320, 480}, White);
  Show(display, green, 1);
  EXPECT_EQ(Red_Pixels({0, 0, 320, 240}), 0) << "the layer lies above";
  std::memset(display->motionString, 'X', sizeof display->motionString - 1);
  Show(display, green);
  EXPECT_EQ(Red_Pixels({0, 0, 320, 240}), 2 * 100 + 2 * 48) << "a caption too wide lands outside";
  Screen_Fail(ScreenStep::SurfaceGetDC);
  Show(display, green);
  EXPECT_EQ(Red_Pixels({0, 0, 320, 240}), 0);
  EXPECT_EQ(Color(100, 100), Green) << "the frame itself goes on";
}

TEST(ColorKey, ColoursAreSampledInEachDepth) {
  const struct {
    int32_t bits;
    uint32_t red, white;
  } cases[] = {{15, 0x7C00, 0x7FFF}, {16, 0xF800, 0xFFFF}, {24, 0xFF0000, 0xFFFFFF}, {32, 0xFF0000, 0xFFFFFF}};
  for (const auto& [bits, red, white] : cases) {
    for (const int32_t width : {320, 640}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      Machine machine(bits, 320, 240);
      Display display(Display_Create(machine.handle, width, 240));
      IDirectDrawSurface* const surface = display->offscreenSurface;
      Fill(surface, {0, 497, 1, 498}, 0x212223);
      Fill(surface, {width == 640 ? 2 : 1, 497, 3, 498}, 0x313233);
      Fill(surface, {0, 0, 2, 1}, white);
      mdColor = 5;
      const auto sample = [&](COLORREF color) { return Sample_Colors(surface, color, display->keyRow); };

      EXPECT_EQ(sample(RGB(255, 0, 0)), red);
      EXPECT_EQ(sample(CLR_INVALID), white) << "put back";
      const uint32_t mask = bits < 24 ? 0xFFFF : 0xFFFFFF;
      EXPECT_EQ(mdColorFirst, 0x212223 & mask);
      EXPECT_EQ(mdColorSecond, 0x313233 & mask);
      EXPECT_EQ(mdColor, mdColorFirst);
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
  for (const std::string& text : {std::string("123.45 Kb\n"), std::string(40, 'x'), std::string("a")}) {
    Set_OSD_Text(&display, text.c_str());
    std::string expected = text.substr(0, 31);
    expected.resize(sizeof display.osdText);
    EXPECT_EQ(std::string(display.osdText, sizeof display.osdText), expected);
  }
}

}  // namespace
