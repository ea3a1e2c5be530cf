// Each overlay of the real DLL, read back from the screen: the DirectDraw form shows it over the picture, the GDI form
// shows the picture alone, and the exported picture never contains it.
#include "windows/dll.h"

#include <functional>

namespace {

enum Ink { None, Red, Blue, DarkBlue };

/** Small pictures: the emulated PC draws slowly. */
struct OverlayTest : DllTest {
  const int Width = 96, Height = 64;
  Window window{Width, Height};

  void SetUp() override {
    Open(Width, Height, window.handle);
    const Bytes grey(static_cast<size_t>(Width * Height * 3), 0x90);
    Bytes frame(1 << 17);
    const int32_t length = dll.JDEC_Compress_RGB888(decoder, 75, grey.data(), 0, frame.data(), 1 << 17, 1, 0);
    frame.resize(static_cast<size_t>(length));
    Push(frame);
    ASSERT_EQ(Differing_Pixels(window.handle), 0);
  }
  void TearDown() override {
    dll.JDEC_enable_MD(decoder, 1);  // All decoders of the process share the rectangle mode.
    DllTest::TearDown();
  }
  /** How many pixels differ from the picture with that ink over it; the GDI form has no ink. */
  int Wrong_Pixels(const std::function<Ink(int x, int y)>& ink) {
    Bytes expected = Expected();
    const Bytes inks[] = {{}, As_Shown({0, 0, 255, 0}, true), As_Shown({255, 0, 0, 0}, true), As_Shown({64, 0, 0, 0}, true)};
    for (int i = 0; directDraw && i < Width * Height; ++i) {
      const Ink over = ink(i % Width, i / Width);
      if (over != None) std::copy_n(inks[over].begin(), 4, &expected[static_cast<size_t>(i) * 4]);
    }
    Repaint(window.handle);
    return Differing_Pixels(window.handle, expected);
  }
  static HBITMAP Bitmap(int width, int height, COLORREF color) {
    const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    const HBRUSH brush = CreateSolidBrush(color);
    const RECT whole = {0, 0, width, height}, hole = {2, 2, 6, 6};
    FillRect(memory, &whole, brush);
    FillRect(memory, &hole, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    SelectObject(memory, before);
    DeleteObject(brush);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return bitmap;
  }
};

bool In(int x, int y, int left, int top, int width, int height) {
  return x >= left && y >= top && x < left + width && y < top + height;
}
bool On_Outline(int x, int y, int left, int top, int width, int height) {
  return In(x, y, left, top, width, height) && !In(x, y, left + 1, top + 1, width - 2, height - 2);
}

TEST_F(OverlayTest, GridAndCell) {
  dll.JDEC_enable_MD(decoder, 1);
  const auto grid = [](int x, int y) { return (x % 16 == 0 && x > 0) || (y % 16 == 0 && y > 0) ? Red : None; };
  EXPECT_EQ(Wrong_Pixels(grid), 0);
  dll.JDEC_set_MD_area(decoder, 3, 2, 1);
  EXPECT_EQ(Wrong_Pixels([&](int x, int y) {
              if (In(x, y, 49, 33, 15, 15)) return (x - 49 + y - 33) % 4 == 2 ? Red : None;
              return grid(x, y);
            }),
            0);
}

TEST_F(OverlayTest, AreaAndRectangle) {
  dll.JDEC_enable_MD(decoder, 2);
  dll.JDEC_set_MD_area_2(decoder, 20, 10, 60, 50, 0);
  const auto area = [](int x, int y) {
    if (On_Outline(x, y, 20, 10, 60, 50)) return Red;
    if (In(x, y, 20, 10, 60, 50)) return None;
    return x % 2 == y % 2 ? DarkBlue : None;
  };
  EXPECT_EQ(Wrong_Pixels(area), 0);
  dll.JDEC_show_rectangle(decoder, 10, 20, 40, 30, 0);
  EXPECT_EQ(Wrong_Pixels([&](int x, int y) { return On_Outline(x, y, 10, 20, 40, 30) && area(x, y) != Red ? Blue : area(x, y); }),
            0);
}

TEST_F(OverlayTest, PtzAndPositionBitmap) {
  EXPECT_EQ(dll.JDEC_set_pos_bmp(decoder, Bitmap(Width, Height, RGB(0, 0, 255))), directDraw);
  EXPECT_EQ(Wrong_Pixels([](int x, int y) { return In(x, y, 2, 2, 4, 4) ? None : Blue; }), 0);
  dll.JDEC_set_ptz_bmp(decoder, Bitmap(50, 30, RGB(255, 0, 0)));
  EXPECT_EQ(Wrong_Pixels([](int x, int y) { return In(x, y, 46, 14, 50, 30) && !In(x, y, 48, 16, 4, 4) ? Red : None; }), 0);
}

TEST_F(OverlayTest, MotionSearch) {
  EXPECT_EQ(dll.JDEC_SetMotionSeachArea(decoder, 10, 46, 80, 60) + dll.JDEC_SetMotionSeachString(decoder, "") +
                dll.JDEC_SetMotionSeachEnable(decoder, 1),
            3);
  EXPECT_EQ(Wrong_Pixels([](int x, int y) { return On_Outline(x, y, 10, 46, 70, 14) ? Red : None; }), 0);
  const Bytes without = Read_Screen(window.handle);
  dll.JDEC_SetMotionSeachString(decoder, "HE");
  Repaint(window.handle);
  Pump_Messages(500);
  const Bytes with = Read_Screen(window.handle);
  int inside = 0, outside = 0;
  for (int i = 0; i < Width * Height; ++i) {
    if (std::equal(&with[i * 4], &with[i * 4] + 3, &without[i * 4])) continue;
    ++(In(i % Width, i / Width, 24, 5, 48, 40) ? inside : outside);
  }
  EXPECT_EQ(outside, 0);
  EXPECT_EQ(inside > 100, directDraw) << inside << " pixels of the caption";
}

}  // namespace
