#include "display/palette.h"

#include "decode/decoder.h"
#include "display/machine.h"

#include <fstream>

namespace {

uint32_t Color_Of(const PALETTEENTRY& entry) {
  return static_cast<uint32_t>(entry.peRed << 16 | entry.peGreen << 8 | entry.peBlue);
}

/** The colours of the indices, computed elsewhere: index, red, green, blue. */
std::vector<uint32_t> Listed_Colors() {
  std::vector<uint32_t> colors(256);
  std::ifstream file(VELARTO_SOURCE_DIR "/tests/data/palette.txt");
  for (uint32_t index, red, green, blue; file >> index >> red >> green >> blue;) colors.at(index) = red << 16 | green << 8 | blue;
  return colors;
}

const std::vector<uint32_t> listed = Listed_Colors();

TEST(Palette, ColoursAreThoseListed) {
  for (int32_t i = FirstColor; i <= LastColor; ++i) EXPECT_EQ(Color_Of(Palette_Color(i)), listed[static_cast<size_t>(i)]) << i;
  EXPECT_EQ(listed[239], 0xFFC2FFu);
}

/** Every index of a raster shows in its colour, in both forms, also after another program has had the screen. */
TEST(Palette, IndicesShowInTheirColours) {
  for (const bool gdi : {false, true}) {
    SCOPED_TRACE(gdi ? "GDI" : "DirectDraw");
    Machine machine(Screen_With(8, gdi), 64, 224);
    JDEC_Init();
    JdecDecoder* const decoder = JDEC_New(64, 224);
    ASSERT_EQ(JDEC_Draw_Init(decoder, machine.handle), 1);
    const Raster raster(Raster_New(64, 224, 8));
    for (int32_t y = 0; y < 224; ++y) std::memset(raster->rows[y], FirstColor + y, 64);
    const auto expect_colors = [&] {
      Display_Present(decoder->display, raster.get(), 0, 0, 64, 224, 0);
      for (int32_t y = 0; y < 224; ++y) ASSERT_EQ(machine.Color(y % 64, y), listed[static_cast<size_t>(FirstColor + y)]) << y;
    };
    expect_colors();
    uint8_t table[1024];
    int32_t format = -1;
    JDEC_get_decompressed_bitmap_ex(decoder, &format, table);
    EXPECT_EQ(format, 0);
    const auto* const entries = reinterpret_cast<const PALETTEENTRY*>(table);
    for (size_t i = FirstColor; i <= LastColor; ++i) EXPECT_EQ(Color_Of(entries[i]), listed[i]);
    EXPECT_EQ(Color_Of(entries[245]), gdi ? 0 : 0x050505u) << "what the screen holds, or the palette itself";

    const HDC dc = GetDC(machine.handle);
    LOGPALETTE other = {0x300, 1, {{9, 9, 9, 0}}};
    const HPALETTE foreign = CreatePalette(&other), before = SelectPalette(dc, foreign, FALSE);
    EXPECT_EQ(RealizePalette(dc), 1u);
    SelectPalette(dc, before, FALSE);
    ReleaseDC(machine.handle, dc);
    DeleteObject(foreign);
    JDEC_reload_palette(decoder);
    expect_colors();
    JDEC_Free(decoder);
    JDEC_Exit();
  }
}

TEST(Palette, TablesOfBothForms) {
  Machine machine(Screen_With(8), 64, 64);
  JdecDisplay* const display = machine.Open(64, 64);
  ASSERT_NE(display->ddPalette, nullptr);
  PALETTEENTRY table[256];
  EXPECT_EQ(Display_Export_Palette(display, table), 1);
  EXPECT_EQ((std::vector{Color_Of(table[15]), Color_Of(table[16]), Color_Of(table[239]), Color_Of(table[240])}),
            (std::vector{0x050505u, 0x004300u, 0xFFC2FFu, 0x050505u}));
  EXPECT_EQ(Display_Export_Palette(nullptr, table) + Display_Export_Palette(display, nullptr), 0);
  Screen_Fail(ScreenStep::CreatePalette);
  ASSERT_NE(machine.Open(64, 64), nullptr);
  EXPECT_EQ(machine.display->ddPalette, nullptr);
  Display_Reload_Palette(machine.display.get());
  Screen_Fail_Nothing();

  Screen_Set_Up(Screen_With(8, true));
  ASSERT_EQ(Form_Of(machine.Open(64, 64)), GdiForm);
  uint16_t slots[240];
  std::memcpy(slots, machine.display->bitmapInfo->bmiColors, sizeof slots);
  EXPECT_EQ((std::vector<int32_t>{slots[15], slots[16], slots[239]}), (std::vector{0, 16, 239}));

  Screen_Set_Up(Screen_With(32));
  machine.Open(64, 64);
  EXPECT_EQ(Display_Export_Palette(machine.display.get(), table), 0);
  Display_Reload_Palette(nullptr);
  JDEC_reload_palette(nullptr);
}

}  // namespace
