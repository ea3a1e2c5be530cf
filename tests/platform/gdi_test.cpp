#include "platform/home.h"

namespace {

/** A header with the room for the colours behind it. */
struct Bitmap {
  BITMAPINFOHEADER header;
  uint32_t colors[256];
  const BITMAPINFO* Info() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};

Bitmap Make_Bitmap(LONG width, LONG height, WORD bits, DWORD compression = BI_RGB) {
  Bitmap bitmap{};
  bitmap.header.biSize = sizeof bitmap.header;
  bitmap.header.biWidth = width;
  bitmap.header.biHeight = height;
  bitmap.header.biPlanes = 1;
  bitmap.header.biBitCount = bits;
  bitmap.header.biCompression = compression;
  return bitmap;
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
    const int rows = StretchDIBits(dc, to.left, to.top, to.right - to.left, to.bottom - to.top, from.left, from.top,
                                   from.right - from.left, from.bottom - from.top, bits, bitmap.Info(), DIB_RGB_COLORS, SRCCOPY);
    ReleaseDC(window, dc);
    return rows;
  }

  HWND window = nullptr;
};

TEST_F(GdiTest, CopiesAtTheSameSizeAreExactAndBottomUp) {
  // Three pixels a row: 9 bytes and 3 that only fill up.
  const uint8_t rows[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0, 11, 12, 13, 14, 15, 16, 17, 18, 19, 0, 0, 0};
  for (const int mode : {COLORONCOLOR, HALFTONE}) {
    ASSERT_NE(Stretch(Make_Bitmap(3, 2, 24), rows, {5, 6, 8, 8}, {0, 0, 3, 2}, mode), 0);
    for (int x = 0; x < 3; ++x) {
      EXPECT_EQ(Pixel(window, 5 + x, 7), RGB(3 * x + 3, 3 * x + 2, 3 * x + 1));
      EXPECT_EQ(Pixel(window, 5 + x, 6), RGB(3 * x + 13, 3 * x + 12, 3 * x + 11));
    }
    EXPECT_EQ(Pixel(window, 8, 6), White);
    EXPECT_EQ(Pixel(window, 5, 8), White);
  }
  // A part of one row: it counts from the bottom.
  ASSERT_NE(Stretch(Make_Bitmap(3, 2, 24), rows, {20, 20, 22, 21}, {1, 1, 3, 2}), 0);
  EXPECT_EQ(Pixel(window, 20, 20), RGB(16, 15, 14));
  EXPECT_EQ(Pixel(window, 21, 20), RGB(19, 18, 17));
}

TEST_F(GdiTest, ReadsEveryDepth) {
  Bitmap bitmap = Make_Bitmap(2, 1, 16);
  const uint16_t fives[] = {0x7C00 | 16 << 5, 0x001F};
  ASSERT_NE(Stretch(bitmap, fives, {0, 0, 2, 1}, {0, 0, 2, 1}), 0);
  EXPECT_EQ(Pixel(window, 0, 0), RGB(255, 132, 0));
  EXPECT_EQ(Pixel(window, 1, 0), Blue);

  bitmap = Make_Bitmap(2, 1, 16, BI_BITFIELDS);
  bitmap.colors[0] = 0xF800, bitmap.colors[1] = 0x07E0, bitmap.colors[2] = 0x001F;
  const uint16_t sixes[] = {0x07E0, 16 << 11 | 33 << 5};
  ASSERT_NE(Stretch(bitmap, sixes, {0, 0, 2, 1}, {0, 0, 2, 1}), 0);
  EXPECT_EQ(Pixel(window, 0, 0), Green);
  EXPECT_EQ(Pixel(window, 1, 0), RGB(132, 134, 0));

  bitmap = Make_Bitmap(2, 1, 8);
  bitmap.header.biClrUsed = 240;
  bitmap.colors[7] = 0x102030, bitmap.colors[239] = 0xFF0000;
  const uint8_t indices[] = {7, 239, 0, 0};
  ASSERT_NE(Stretch(bitmap, indices, {0, 0, 2, 1}, {0, 0, 2, 1}), 0);
  EXPECT_EQ(Pixel(window, 0, 0), RGB(0x10, 0x20, 0x30));
  EXPECT_EQ(Pixel(window, 1, 0), Red);

  const uint32_t words[] = {0x00010203, 0x0000FF00};
  ASSERT_NE(Stretch(Make_Bitmap(2, 1, 32), words, {0, 0, 2, 1}, {0, 0, 2, 1}), 0);
  EXPECT_EQ(Pixel(window, 0, 0), RGB(1, 2, 3));
  EXPECT_EQ(Pixel(window, 1, 0), Green);
}

TEST_F(GdiTest, StretchesAndIsCutToTheClient) {
  const uint32_t words[] = {0xFF0000, 0x0000FF};
  ASSERT_NE(Stretch(Make_Bitmap(2, 1, 32), words, {72, 50, 92, 70}, {0, 0, 2, 1}), 0);
  EXPECT_EQ(Pixel(window, 71, 50), White);
  EXPECT_EQ(Pixel(window, 72, 49), White);
  EXPECT_EQ(Pixel(window, 72, 50), Red);
  EXPECT_EQ(Pixel(window, 79, 59), Red);
  ASSERT_NE(Stretch(Make_Bitmap(2, 1, 32), words, {-10, 0, 10, 5}, {0, 0, 2, 1}, HALFTONE), 0);
  EXPECT_EQ(Pixel(window, 9, 4), Blue);
  EXPECT_EQ(Pixel(window, 10, 4), White);
  EXPECT_EQ(Pixel(window, 80, 0), CLR_INVALID);
}

TEST_F(GdiTest, RectangleLeavesOutRightBottomAndTheInside) {
  HDC dc = GetDC(window);
  HPEN pen = CreatePen(PS_SOLID, 1, Red);
  HGDIOBJ oldPen = SelectObject(dc, pen), oldBrush = SelectObject(dc, GetStockObject(NULL_BRUSH));
  EXPECT_TRUE(Rectangle(dc, 10, 10, 20, 15));
  EXPECT_EQ(SelectObject(dc, oldPen), pen);
  EXPECT_EQ(SelectObject(dc, oldBrush), GetStockObject(NULL_BRUSH));
  EXPECT_TRUE(DeleteObject(pen));
  for (const POINT edge : {POINT{10, 10}, POINT{19, 10}, POINT{10, 14}, POINT{19, 14}, POINT{15, 10}, POINT{19, 12}})
    EXPECT_EQ(GetPixel(dc, edge.x, edge.y), Red);
  for (const POINT plain : {POINT{20, 12}, POINT{15, 15}, POINT{9, 12}, POINT{15, 9}, POINT{15, 12}, POINT{11, 11}})
    EXPECT_EQ(GetPixel(dc, plain.x, plain.y), White);
  ReleaseDC(window, dc);
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
  for (int y = 0; y < 60; ++y)
    for (int x = 0; x < 80; ++x) {
      const COLORREF color = GetPixel(dc, x, y);
      EXPECT_EQ(GetRValue(color), 255) << "only shades of red on white";
      marked[x] += color != White;
      rows[y] += color != White;
    }
  for (int x = 0; x < 20; ++x) EXPECT_EQ(marked[10 + x], marked[30 + x]) << "letters follow each other by 20 columns";
  EXPECT_EQ(marked[5] + marked[55] + rows[4] + rows[45], 0);
  EXPECT_GT(rows[20] * rows[30], 0);
  SelectObject(dc, oldFont);
  EXPECT_TRUE(DeleteObject(font));
  ReleaseDC(window, dc);
}

}  // namespace
