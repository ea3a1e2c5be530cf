#include "display/palette.h"

#include "display/test_display.h"

namespace {

uint32_t Color_Of(const PALETTEENTRY& entry) {
  return static_cast<uint32_t>(entry.peRed << 16 | entry.peGreen << 8 | entry.peBlue);
}

/** The colours of the indices, computed elsewhere: index, red, green, blue. */
std::vector<uint32_t> Listed_Colors() {
  std::vector<uint32_t> colors(256);
  std::ifstream file(Data_Path("palette.txt"));
  for (uint32_t index, red, green, blue; file >> index >> red >> green >> blue;) colors.at(index) = red << 16 | green << 8 | blue;
  return colors;
}

const std::vector<uint32_t> listed = Listed_Colors();

/** Another program with a palette of its own takes all of the screen's entries. */
void Install_Other_Palette(HWND window) {
  struct {
    WORD version = 0x300, count = 236;
    PALETTEENTRY entries[236] = {};
  } other;
  for (size_t i = 0; i < std::size(other.entries); ++i) other.entries[i] = {static_cast<BYTE>(i + 10), 9, 9, 0};
  const HDC dc = GetDC(window);
  const HPALETTE foreign = CreatePalette(reinterpret_cast<const LOGPALETTE*>(&other)), before = SelectPalette(dc, foreign, FALSE);
  EXPECT_GT(RealizePalette(dc), 200u);
  SelectPalette(dc, before, FALSE);
  ReleaseDC(window, dc);
  DeleteObject(foreign);
}

/** Every index of a raster is shown in its colour, in both forms and where GDI shows a frame of the DirectDraw form, even after
 *  another program has changed the screen's palette. */
TEST_F(LibraryTest, PaletteIndicesShowInTheirColours) {
  enum Path { DirectDraw, GDI, SecondaryMonitor };
  for (const Path path : {DirectDraw, GDI, SecondaryMonitor}) {
    SCOPED_TRACE(testing::Message() << "path " << path);
    const bool gdi = path == GDI;
    TestDisplay test(Screen_With(8, gdi), 64, 224);
    const DecoderPtr decoder = Shown_Decoder(test.handle, 64, 224);
    Rig_Move_To_Monitor(test.handle, path == SecondaryMonitor ? 1 : 0);
    const RasterPtr raster(Raster_New(64, 224, 8));
    for (int32_t y = 0; y < 224; ++y) std::memset(raster->rows[y], FirstColor + y, 64);
    const auto show = [&] { Display_Present(decoder->display, raster.get(), 0, 0, 64, 224, 0); };
    const auto expect_colors = [&] {
      for (int32_t y = 0; y < 224; ++y) ASSERT_EQ(test.Color(y % 64, y), listed[static_cast<size_t>(FirstColor + y)]) << y;
    };
    show();
    expect_colors();
    uint8_t table[1024];
    int32_t format = -1;
    JDEC_get_decompressed_bitmap_ex(decoder.get(), &format, table);
    EXPECT_EQ(format, 0);
    const auto* const entries = reinterpret_cast<const PALETTEENTRY*>(table);
    for (size_t i = FirstColor; i <= LastColor; ++i) EXPECT_EQ(Color_Of(entries[i]), listed[i]);
    for (const size_t i : {15, 240})
      EXPECT_EQ(Color_Of(entries[i]), gdi ? 0 : 0x050505u) << "what the screen holds, or the palette itself";

    if (path != DirectDraw) {  // GDI takes the entries again with each frame.
      Install_Other_Palette(test.handle);
      show();
      expect_colors();
    }
    Install_Other_Palette(test.handle);
    JDEC_reload_palette(decoder.get());
    expect_colors();
  }
}

TEST(Palette, IsOnTheScreenBeforeTheFirstFrame) {
  for (const bool gdi : {false, true}) {
    TestDisplay test(Screen_With(8, gdi), 64, 64);
    test.Open(64, 64);
    PALETTEENTRY entries[256];
    const HDC dc = GetDC(test.handle);
    ASSERT_EQ(GetSystemPaletteEntries(dc, 0, 256, entries), 256u);
    ReleaseDC(test.handle, dc);
    const auto shown = [](uint32_t color) { return [color](const PALETTEENTRY& entry) { return Color_Of(entry) == color; }; };
    for (size_t i = FirstColor; i <= LastColor; ++i) EXPECT_TRUE(std::any_of(entries, entries + 256, shown(listed[i]))) << i;
  }
}

TEST(Palette, WithoutAPaletteThereIsNoTable) {
  TestDisplay test(Screen_With(8), 64, 64);
  PALETTEENTRY table[256];
  ASSERT_NE(test.Open(64, 64)->ddPalette, nullptr);
  EXPECT_EQ(Display_Export_Palette(nullptr, table) + Display_Export_Palette(test.display.get(), nullptr), 0);
  Rig_Fail(RigStep::CreatePalette);
  ASSERT_NE(test.Open(64, 64), nullptr);
  EXPECT_EQ(test.display->ddPalette, nullptr);
  Display_Reload_Palette(test.display.get());
  Rig_Fail_Nothing();

  Screen_Set_Up(Screen_With(32));
  test.Open(64, 64);
  EXPECT_EQ(Display_Export_Palette(test.display.get(), table), 0);
  Display_Reload_Palette(nullptr);
  JDEC_reload_palette(nullptr);
}

}  // namespace
