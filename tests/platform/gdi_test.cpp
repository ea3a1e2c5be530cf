#include "platform/platform_test.h"

namespace {

/** A header and its colours. */
struct Bitmap {
  BITMAPINFOHEADER header;
  uint32_t colors[256];
};

Bitmap Make_Bitmap(LONG width, LONG height, WORD bits, DWORD compression = BI_RGB) {
  return {{sizeof(BITMAPINFOHEADER), width, height, 1, bits, compression, 0, 0, 0, 0, 0}, {}};
}

class GdiTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    window = Make_Window(40, 40, 80, 60);
  }

  int Stretch(const Bitmap& bitmap, const void* bits, RECT to, RECT from, int mode = COLORONCOLOR) {
    HDC dc = GetDC(window);
    SetStretchBltMode(dc, mode);
    const int rows =
        StretchDIBits(dc, to.left, to.top, to.right - to.left, to.bottom - to.top, from.left, from.top, from.right - from.left,
                      from.bottom - from.top, bits, reinterpret_cast<const BITMAPINFO*>(&bitmap), DIB_RGB_COLORS, SRCCOPY);
    ReleaseDC(window, dc);
    return rows;
  }

  HWND window = nullptr;
};

TEST_F(GdiTest, CopiesAtTheSameSizeAreExactAndBottomUp) {
  // Three pixels a row: 9 bytes and 3 of padding.
  const uint8_t rows[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0, 11, 12, 13, 14, 15, 16, 17, 18, 19, 0, 0, 0};
  for (const int mode : {COLORONCOLOR, HALFTONE}) {
    ASSERT_NE(Stretch(Make_Bitmap(3, 2, 24), rows, {5, 6, 8, 8}, {0, 0, 3, 2}, mode), 0);
    for (int x = 0; x < 3; ++x) {
      EXPECT_EQ(Pixel(window, 5 + x, 7), RGB(3 * x + 3, 3 * x + 2, 3 * x + 1));
      EXPECT_EQ(Pixel(window, 5 + x, 6), RGB(3 * x + 13, 3 * x + 12, 3 * x + 11));
    }
    Expect_Pixels(window, {{8, 6, White}, {5, 8, White}});
  }
  ASSERT_NE(Stretch(Make_Bitmap(3, 2, 24), rows, {20, 20, 22, 21}, {1, 1, 3, 2}), 0);  // Of one row, counted from the bottom.
  Expect_Pixels(window, {{20, 20, RGB(16, 15, 14)}, {21, 20, RGB(19, 18, 17)}});
}

TEST_F(GdiTest, DrawsInItsClipAlone) {
  const uint8_t black[4] = {};
  const HDC dc = GetDC(window);
  for (const bool text : {false, true}) {  // Both white: the brush, and the background of a text.
    SelectClipRgn(dc, nullptr);
    Stretch(Make_Bitmap(1, 1, 32), black, {0, 0, 80, 60}, {0, 0, 1, 1});
    EXPECT_EQ(IntersectClipRect(dc, 10, 10, 40, 30), SIMPLEREGION);
    EXPECT_EQ(IntersectClipRect(dc, 0, 20, 30, 60), SIMPLEREGION);
    text ? TextOutA(dc, 0, 20, "          ", 10) : Rectangle(dc, 0, 0, 80, 60);
    Expect_Pixels(window, {{10, 25, White}, {29, 29, White}, {9, 25, 0}, {30, 25, 0}, {20, 19, 0}, {20, 30, 0}});
  }
  EXPECT_EQ(IntersectClipRect(dc, 50, 50, 60, 60), NULLREGION);
  Rectangle(dc, 0, 0, 80, 60);
  Expect_Pixels(window, {{55, 55, 0}, {70, 50, 0}});
  ReleaseDC(window, dc);
}

TEST_F(GdiTest, ReadsEveryDepth) {
  Bitmap masked = Make_Bitmap(2, 1, 16, BI_BITFIELDS), indexed = Make_Bitmap(2, 1, 8);
  masked.colors[0] = 0xF800, masked.colors[1] = 0x07E0, masked.colors[2] = 0x001F;
  indexed.header.biClrUsed = 240;
  indexed.colors[7] = 0x102030, indexed.colors[239] = 0xFF0000;
  const struct {
    Bitmap bitmap;
    uint32_t bits[2];
    COLORREF left, right;
  } cases[] = {{Make_Bitmap(2, 1, 16), {0x001F'7E00, 0}, RGB(255, 132, 0), Blue},
               {masked, {0x8420'07E0, 0}, Green, RGB(132, 134, 0)},
               {indexed, {239 << 8 | 7, 0}, RGB(0x10, 0x20, 0x30), Red},
               {Make_Bitmap(2, 1, 32), {0x010203, 0x00FF00}, RGB(1, 2, 3), Green}};
  for (const auto& [bitmap, bits, left, right] : cases) {
    ASSERT_NE(Stretch(bitmap, bits, {0, 0, 2, 1}, {0, 0, 2, 1}), 0);
    Expect_Pixels(window, {{0, 0, left}, {1, 0, right}});
  }
}

TEST_F(GdiTest, StretchesAndIsCutToTheClient) {
  const uint32_t words[] = {0xFF0000, 0x0000FF};
  ASSERT_NE(Stretch(Make_Bitmap(2, 1, 32), words, {72, 50, 92, 70}, {0, 0, 2, 1}), 0);
  ASSERT_NE(Stretch(Make_Bitmap(2, 1, 32), words, {-10, 0, 10, 5}, {0, 0, 2, 1}, HALFTONE), 0);
  Expect_Pixels(window, {{71, 50, White}, {72, 49, White}, {72, 50, Red}, {79, 59, Red}});
  Expect_Pixels(window, {{9, 4, Blue}, {10, 4, White}, {80, 0, CLR_INVALID}});
}

TEST_F(GdiTest, TextFillsItsCellsAndLeavesTheGround) {
  HDC dc = GetDC(window);
  HFONT font = CreateFontA(40, 20, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                           PROOF_QUALITY, FIXED_PITCH | FF_MODERN, "Courier New");
  HGDIOBJ oldFont = SelectObject(dc, font);
  SetTextColor(dc, Red);
  SetBkMode(dc, TRANSPARENT);
  ASSERT_TRUE(TextOutA(dc, 10, 5, "HH", 2));
  int marked[80] = {}, rows[60] = {};
  for (int i = 0; i < 80 * 60; ++i) {
    const COLORREF color = GetPixel(dc, i % 80, i / 80);
    EXPECT_EQ(GetRValue(color), 255) << "only shades of red on white";
    marked[i % 80] += color != White;
    rows[i / 80] += color != White;
  }
  for (int x = 0; x < 20; ++x) EXPECT_EQ(marked[10 + x], marked[30 + x]) << "letters follow each other by 20 columns";
  EXPECT_EQ(marked[5] + marked[55] + rows[4] + rows[45], 0);
  EXPECT_GT(rows[20] * rows[30], 0);
  SelectObject(dc, oldFont);
  EXPECT_TRUE(DeleteObject(font));
  ReleaseDC(window, dc);
}

}  // namespace
