/* Palettes, on a screen of 8 bits. */
#include "platform/platform_test.h"

namespace {

constexpr int Colors = 224;

COLORREF Color_Of(int index) { return RGB(16 + 7 * (index % 32), 20 + 30 * (index / 32), 3 * index % 251); }

class GdiPaletteTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
#ifndef _WIN32
    Screen_Set_Up(Screen_Of_Depth(8));
#endif
    window = Make_Window(40, 40, Colors, 10);
    struct {
      WORD version = 0x300, count = Colors;
      PALETTEENTRY entries[Colors] = {};
    } logical;
    for (int i = 0; i < Colors; ++i) {
      const COLORREF color = Color_Of(i);
      logical.entries[i] = {GetRValue(color), GetGValue(color), GetBValue(color), 0};
    }
    palette = CreatePalette(reinterpret_cast<const LOGPALETTE*>(&logical));
  }

  void TearDown() override {
    DeleteObject(palette);
    PlatformTest::TearDown();
  }

  /** Draws a bitmap with all colours, and gives how many of them arrive. */
  int Draw(bool selected, bool realized) {
    struct {
      BITMAPINFOHEADER header = {sizeof(BITMAPINFOHEADER), Colors, 1, 1, 8, BI_RGB, 0, 0, 0, Colors, Colors};
      RGBQUAD colors[Colors] = {};
    } info;
    uint8_t indices[Colors];
    for (int i = 0; i < Colors; ++i) {
      const COLORREF color = Color_Of(i);
      info.colors[i] = {GetBValue(color), GetGValue(color), GetRValue(color), 0};
      indices[i] = static_cast<uint8_t>(i);
    }
    const HDC dc = GetDC(window);
    const HPALETTE before = selected ? SelectPalette(dc, palette, FALSE) : nullptr;
    if (realized) RealizePalette(dc);
    StretchDIBits(dc, 0, 0, Colors, 1, 0, 0, Colors, 1, indices, reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS,
                  SRCCOPY);
    int there = 0;
    for (int i = 0; i < Colors; ++i) there += GetPixel(dc, i, 0) == Color_Of(i);
    if (before) SelectPalette(dc, before, FALSE);
    ReleaseDC(window, dc);
    return there;
  }

  HWND window = nullptr;
  HPALETTE palette = nullptr;
};

TEST_F(GdiPaletteTest, ColoursNeedAPaletteThatIsSelectedAndRealized) {
  EXPECT_LT(Draw(false, false), 8);
  EXPECT_LT(Draw(true, false), 8);
  EXPECT_GT(Draw(true, true), 150) << "Wine keeps some entries for itself";
  EXPECT_GT(Draw(true, false), 150) << "realized before";
}

}  // namespace
