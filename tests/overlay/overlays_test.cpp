#include "display/statistics.h"
#include "display/test_display.h"
#include "overlay/color_key.h"
#include "overlay/motion_state.h"

namespace {

void Fill(IDirectDrawSurface* surface, const RECT& rect, uint32_t color) {
  HDC dc = nullptr;
  ASSERT_EQ(IDirectDrawSurface_GetDC(surface, &dc), DD_OK);
  for (LONG y = rect.top; y < rect.bottom; ++y) {
    for (LONG x = rect.left; x < rect.right; ++x) SetPixel(dc, x, y, RGB(color >> 16, color >> 8 & 255, color & 255));
  }
  IDirectDrawSurface_ReleaseDC(surface, dc);
}

/** A display of 320 by 240 at 1:1 in 32 bits, and a green picture. */
struct LayerOrderTest : testing::Test {
  TestDisplay test{32, 320, 240};
  JdecDisplay* const display = test.Open(320, 240);
  const RasterPtr green = Plain_Raster(320, 240, Green);

  void Paint(const RECT& rect, uint32_t color) { Fill(display->offscreenSurface, rect, color); }
  int32_t Count(uint32_t color, const RECT& part = {0, 0, 320, 240}) const {
    int32_t count = 0;
    for (LONG y = part.top; y < part.bottom; ++y) {
      for (LONG x = part.left; x < part.right; ++x) count += test.Color(x, y) == color;
    }
    return count;
  }
};

TEST_F(LayerOrderTest, OneLayerAtATimeCoversWhereItIsNotBlack) {
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
    // The bitmaps set black as the key before they are copied, whatever it was; the motion layer uses the one that is set.
    DDCOLORKEY other = {White, White};
    if (mdMode == 0) IDirectDrawSurface_SetColorKey(display->offscreenSurface, DDCKEY_SRCBLT, &other);
    test.Show(green, mdMode);
    const int32_t area = (rect.right - rect.left) * (rect.bottom - rect.top), covered = area ? area - 100 : 0;
    EXPECT_EQ(Count(color, rect), covered);
    EXPECT_EQ(Count(Green), 320 * 240 - covered) << "also where the key's colour was converted";
    EXPECT_EQ(Count(Green, {rect.left + 10, rect.top + 20, rect.left + 20, rect.top + 30}), 100);
  }
}

TEST(PositionBitmap, HigherThanThePictureIsCutAtTheTop) {
  TestDisplay test(32, 640, 200);
  test.Open(640, 200)->posEnabled = 1;
  Fill(test.display->offscreenSurface, {0, 618 + 40, 640, 618 + 41}, Red);  // The strip's 240 rows end with the picture's.
  test.Show(Plain_Raster(640, 200, Green));
  EXPECT_EQ(test.Color(639, 0), Red);
  EXPECT_EQ(test.Color(639, 1), Green);
}

TEST_F(LayerOrderTest, MotionSearchDrawsCaptionAndOutline) {
  constexpr int32_t outline = 2 * 100 + 2 * 48;
  display->motionRect = {100, 100, 200, 150};
  std::strcpy(display->motionString, "MOVE");
  const auto reds = [&](int32_t enabled, int32_t mdMode) {
    display->motionSearchEnabled = enabled;
    test.Show(green, mdMode);
    return Count(Red);
  };
  EXPECT_EQ(reds(0, 0), 0);
  EXPECT_GT(reds(1, 0), outline);
  EXPECT_EQ(Count(Red, {100, 100, 200, 150}), outline);
  EXPECT_EQ(Count(Green, {101, 101, 199, 149}), 98 * 48) << "one pixel wide, not filled";
  EXPECT_GT(Count(Red, {120, 5, 160, 45}), 40) << "two letters left of the middle";
  EXPECT_GT(Count(Red, {160, 5, 200, 45}), 40) << "and two right of it";
  EXPECT_EQ(Count(Green, {0, 0, 115, 50}) + Count(Green, {205, 0, 320, 50}), 2 * 115 * 50);

  test.Show(Plain_Raster(320, 240, Black));
  Expect_Text(test, 120, 5, "MOVE", 40, Red);

  Paint({0, 240, 320, 480}, White);
  EXPECT_EQ(reds(1, 1), 0) << "the layer lies above";
  std::memset(display->motionString, 'X', sizeof display->motionString - 1);
  EXPECT_EQ(reds(1, 0), outline) << "a caption too wide lands outside";
  Rig_Fail(RigStep::SurfaceGetDC);
  EXPECT_EQ(reds(1, 0), 0);
  EXPECT_EQ(Count(Green), 320 * 240) << "the frame itself goes on";
}

TEST(ColorKey, ColoursAreSampledInEachDepth) {
  const uint32_t cases[][4] = {
      {15, 0x7C00, 0x7FFF, 0x3E0}, {16, 0xF800, 0xFFFF, 0x7E0}, {24, Red, White, Green}, {32, Red, White, Green}};
  for (const auto& [bits, red, white, green] : cases) {
    for (const int32_t width : {320, 640}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      TestDisplay test(static_cast<int32_t>(bits), 320, 240);
      IDirectDrawSurface* const surface = test.Open(width, 240)->offscreenSurface;
      Fill(surface, {0, 497, 1, 498}, Red);
      Fill(surface, {width == 640 ? 2 : 1, 497, 3, 498}, Green);
      Fill(surface, {0, 0, 2, 1}, White);
      mdColor = 5;
      const auto sample = [&](COLORREF color) { return Sample_Colors(surface, color, test.display->keyRow); };
      EXPECT_EQ(sample(RGB(255, 0, 0)), red);
      EXPECT_EQ(sample(CLR_INVALID), white) << "put back";
      EXPECT_EQ((std::vector<uint32_t>{mdColorFirst, mdColorSecond, mdColor}), (std::vector{red, green, red}));
      Rig_Fail(RigStep::LockOffscreen, 0, 4, DDERR_WASSTILLDRAWING);
      EXPECT_EQ(sample(RGB(255, 0, 0)), red) << "busy";
      for (const RigStep step : {RigStep::LockOffscreen, RigStep::LockWithoutPixels, RigStep::SurfaceGetDC}) {
        Rig_Fail(step, 0, 1);
        EXPECT_EQ(sample(RGB(255, 0, 0)), 0xFFFFFFFF) << static_cast<int32_t>(step);
      }
    }
  }
}

/** A bitmap of one colour with a black and a white corner. */
HBITMAP Make_Bitmap(int32_t width, int32_t height, uint32_t color) {
  std::vector<uint32_t> pixels(static_cast<size_t>(width * height), color);
  pixels.front() = White;  // Lower left,
  pixels.back() = Black;   // upper right.
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof info.bmiHeader, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  return CreateDIBitmap(nullptr, &info.bmiHeader, CBM_INIT, pixels.data(), &info, DIB_RGB_COLORS);
}

struct Bitmaps : LibraryTest {
  TestDisplay test{Screen_With(32), 320, 240};
  JdecDecoder* const decoder = JDEC_New(320, 240);
  const RasterPtr green = Plain_Raster(320, 240, Green);

  ~Bitmaps() override { JDEC_Free(decoder); }
  uint32_t Shown(int32_t x, int32_t y) {
    Display_Present(decoder->display, green.get(), 0, 0, 320, 240, 0);
    return test.Color(x, y);
  }
};

TEST_F(Bitmaps, AreStoredInTheirStripsAndDeleted) {
  ASSERT_EQ(JDEC_Draw_Init(decoder, test.handle), 1);
  const int32_t alive = Rig_Objects_Alive();
  JDEC_set_ptz_bmp(decoder, Make_Bitmap(100, 50, Red));
  EXPECT_EQ((std::vector{Shown(319, 170), Shown(318, 170), Shown(220, 219), Shown(219, 219), Shown(319, 220)}),
            (std::vector{Green, Red, White, Green, Green}));
  EXPECT_EQ(JDEC_set_pos_bmp(decoder, Make_Bitmap(320, 240, Blue)), 1);
  EXPECT_EQ(Shown(0, 0), Green) << "the PTZ bitmap alone shows";
  JDEC_set_ptz_bmp(decoder, nullptr);
  EXPECT_EQ((std::vector{Shown(0, 0), Shown(319, 0), Shown(0, 239)}), (std::vector{Blue, Green, White}));
  EXPECT_EQ(JDEC_set_pos_bmp(decoder, Make_Bitmap(20, 10, Red)), 1);
  EXPECT_EQ((std::vector{Shown(0, 0), Shown(20, 0), Shown(0, 10)}), (std::vector{Red, Green, Green})) << "nothing of the old one";
  EXPECT_EQ(JDEC_set_pos_bmp(decoder, Make_Bitmap(400, 300, Red)), 1);
  EXPECT_EQ(Shown(319, 239), Red);
  EXPECT_EQ(JDEC_set_pos_bmp(decoder, nullptr), 0);
  EXPECT_EQ(Shown(319, 239), Green);
  JDEC_set_ptz_bmp(decoder, Make_Bitmap(400, 300, Blue));  // Cut to the strip.
  EXPECT_EQ((std::vector{Shown(0, 100), Shown(319, 219), Shown(0, 99)}), (std::vector{Blue, Blue, Green}));
  EXPECT_EQ(Rig_Objects_Alive(), alive) << "all of them deleted";

  const HBITMAP kept = Make_Bitmap(5, 5, Red);
  Rig_Fail(RigStep::SurfaceGetDC);
  EXPECT_EQ(JDEC_set_pos_bmp(decoder, kept), 0);
  JDEC_set_ptz_bmp(decoder, kept);
  EXPECT_EQ(decoder->display->ptzEnabled + decoder->display->posEnabled, 0);
  EXPECT_TRUE(DeleteObject(kept)) << "still the caller's";
}

TEST_F(Bitmaps, NothingOfAnOverlayReachesTheExportedPicture) {
  ASSERT_EQ(JDEC_Draw_Init(decoder, test.handle), 1);
  const TestFrame frame = Load_Frame("scene-q50.jpg", 50);
  Push(decoder, frame.compact);
  const Bytes plain = Current_Picture(decoder);
  JDEC_enable_MD(decoder, 3);
  JDEC_set_MD_area(decoder, 1, 1, 1);
  JDEC_show_rectangle(decoder, 10, 10, 20, 20, 0);
  JDEC_SetMotionSeachEnable(decoder, 1);
  JDEC_SetMotionSeachString(decoder, "XX");
  Display_Show_Statistics(decoder->display, 1);
  for (const int32_t mode : {3, 0}) {
    JDEC_enable_MD(decoder, mode);
    JDEC_set_ptz_bmp(decoder, Make_Bitmap(40, 20, Red));
    const int32_t place[4] = {0, 0, 320, 240};
    JDEC_Access_SrcRect(decoder, place);
    EXPECT_EQ(Current_Picture(decoder), plain);
    const uint8_t* const raster = JDEC_get_decompressed_bitmap(decoder);
    for (size_t i = 54, k = 0; i < plain.size(); i += 3, k += 4)
      ASSERT_TRUE(std::equal(&plain[i], &plain[i] + 3, raster + k)) << i;
  }
}

TEST_F(Bitmaps, CallsWithoutASurfaceOrDisplayDoNothing) {
  const HBITMAP kept = Make_Bitmap(5, 5, Red);
  for (JdecDecoder* const on : {decoder, (JdecDecoder*)nullptr}) {
    EXPECT_EQ(JDEC_set_pos_bmp(on, kept) + JDEC_SetMotionSeachEnable(on, 1) + JDEC_SetMotionSeachArea(on, 1, 2, 3, 4) +
                  JDEC_SetMotionSeachString(on, "x"),
              0);
    JDEC_set_ptz_bmp(on, kept);
    JDEC_register_draw_callback(
        on, [](HWND, uintptr_t) {}, 1);
  }
  Screen_Set_Up(Screen_With(32, true));
  ASSERT_EQ(JDEC_Draw_Init(decoder, test.handle), 1);
  ASSERT_EQ(decoder->display->useDirectDraw, 0);
  EXPECT_EQ(JDEC_set_pos_bmp(decoder, kept), 0);
  JDEC_set_ptz_bmp(decoder, kept);
  JDEC_register_draw_callback(
      decoder, [](HWND, uintptr_t) {}, 1);
  EXPECT_EQ(decoder->display->drawCallbackUser, 1u);
  EXPECT_EQ(Shown(0, 0), Green);
  EXPECT_TRUE(DeleteObject(kept));
}

TEST_F(Bitmaps, MotionSearchAndCallbackAreSetByTheirCalls) {
  ASSERT_EQ(JDEC_Draw_Init(decoder, test.handle), 1);
  static int32_t calls;
  calls = 0;
  JDEC_register_draw_callback(
      decoder, [](HWND, uintptr_t user) { calls += static_cast<int32_t>(user); }, 7);
  EXPECT_EQ(JDEC_SetMotionSeachEnable(decoder, 5) + JDEC_SetMotionSeachArea(decoder, 10, 60, 20, 70), 2);
  EXPECT_EQ(JDEC_SetMotionSeachString(decoder, std::string(300, 'w').c_str()), 1);
  EXPECT_EQ(std::string(decoder->display->motionString), std::string(255, 'w'));
  EXPECT_EQ((std::vector{Shown(10, 60), Shown(11, 61)}), (std::vector{Red, Green}));
  EXPECT_EQ(calls, 14);
  JDEC_register_draw_callback(decoder, nullptr, 0);
  Shown(0, 0);
  EXPECT_EQ(calls, 14);
}

}  // namespace
