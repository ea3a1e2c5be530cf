#include "display/palette.h"

#include "pixel/convert.h"

#include "platform/win32.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr int32_t PaletteSize = 256;
/** In the DirectDraw table the colour of an index is this many entries before that index: the system keeps the first ten entries
 *  of the screen's palette, and the table comes after them. */
constexpr int32_t TableOffset = 10;
/** Entries of the screen that a palette can have; the system keeps ten at either end. */
constexpr WORD PlacedEntries = 236;
/** No entry is merged with another. Unused entries are filled with this byte. */
constexpr uint8_t KeptEntry = PC_RESERVED | PC_NOCOLLAPSE;
constexpr WORD PaletteVersion = 0x300;

constexpr uint8_t Limited(int32_t value) { return static_cast<uint8_t>(std::clamp(value >> 16, 0, 255)); }

using Table = std::array<PALETTEENTRY, PaletteSize>;

/** Fills in all colours, each at its index minus `offset`. */
void Fill_Colors(Table* table, int32_t offset, uint8_t flags) {
  for (int32_t i = FirstColor; i <= LastColor; ++i) {
    PALETTEENTRY& entry = (*table)[static_cast<size_t>(i - offset)];
    entry = Palette_Color(i);
    entry.peFlags = flags;
  }
}

/** The colours as the palette manager is to place them: it starts after the screen's first ten entries. */
Table Placed_Colors(uint8_t flags) {
  Table table;
  std::memset(&table, KeptEntry, sizeof table);
  Fill_Colors(&table, TableOffset, flags);
  return table;
}

void Build_DirectDraw(JdecDisplay* display) {
  Table table = Placed_Colors(KeptEntry);
  IDirectDraw_CreatePalette(display->ddraw, DDPCAPS_8BIT, table.data(), &display->ddPalette, nullptr);
  if (display->ddPalette) IDirectDrawSurface_SetPalette(display->primarySurface, display->ddPalette);
}

/** A LOGPALETTE of full size. */
struct LogicalPalette {
  WORD palVersion = PaletteVersion;
  WORD palNumEntries = PaletteSlots;
  Table entries = {};
};
static_assert(sizeof(LogicalPalette) == 4 + 4 * PaletteSize);

/** Fills the colour slots of bitmapInfo with 16-bit indices, one for each colour. */
void Fill_Color_Indices(BITMAPINFO* info) {
  uint16_t indices[LastColor + 1] = {};
  for (int32_t i = FirstColor; i <= LastColor; ++i) indices[i] = static_cast<uint16_t>(i);
  std::memcpy(info->bmiColors, indices, sizeof indices);
}

/** The palette for what GDI shows. That of the DirectDraw form is placed as the one of DirectDraw is, so that neither takes
 * entries from the other. Null if the system fails. */
HPALETTE Create_Logical(bool directDraw) {
  LogicalPalette logical;
  if (directDraw) {
    logical.palNumEntries = PlacedEntries;
    logical.entries = Placed_Colors(PC_NOCOLLAPSE);
  } else {
    Fill_Colors(&logical.entries, 0, 0);
  }
  return CreatePalette(reinterpret_cast<const LOGPALETTE*>(&logical));
}

void Build_GDI(JdecDisplay* display) {
  Fill_Color_Indices(display->bitmapInfo);
  const HDC dc = GetDC(display->window);
  if (!dc) return;
  if (display->gdiPalette) {
    display->previousPalette = SelectPalette(dc, display->gdiPalette, FALSE);
    RealizePalette(dc);
  }
  ReleaseDC(display->window, dc);
}

}  // namespace

PALETTEENTRY Palette_Color(int32_t index) {
  const int32_t cr = (index & 3) * 32 - 48, cb = (index >> 2 & 3) * 32 - 48;
  const int32_t y = (index >> 4) * 1220944 - 610472;
  // Blue's rounding differs from the others'.
  return {Limited(104597 * cr + y + 0x8000), Limited(-53279 * cr - 25675 * cb + y + 0x8000), Limited(132201 * cb + y + 0x8012),
          0};
}

void Display_Build_Palette(JdecDisplay* display) {
  if (display->pixelFormat != PixelPalette8) return;
  display->gdiPalette = Create_Logical(display->useDirectDraw != 0);
  if (display->useDirectDraw) {
    Build_DirectDraw(display);
  } else {
    Build_GDI(display);
  }
}

void Display_Free_Palette(JdecDisplay* display) {
  const HDC dc = display->previousPalette ? GetDC(display->window) : nullptr;
  if (dc) {
    SelectPalette(dc, display->previousPalette, FALSE);
    ReleaseDC(display->window, dc);
  }
  // Only now it is certain that it isn't selected.
  if (display->gdiPalette) DeleteObject(display->gdiPalette);
  display->previousPalette = nullptr;
  display->gdiPalette = nullptr;
}

void Display_Reload_Palette(JdecDisplay* display) {
  if (!display || !display->window) return;
  const HDC dc = GetDC(display->window);
  if (display->useDirectDraw) {
    if (display->ddPalette) IDirectDrawSurface_SetPalette(display->primarySurface, display->ddPalette);
  } else if (dc) {
    SelectPalette(dc, display->gdiPalette, FALSE);
    if (RealizePalette(dc) != 0) InvalidateRect(display->window, nullptr, TRUE);
  }
  if (dc) ReleaseDC(display->window, dc);
}

int32_t Display_Export_Palette(const JdecDisplay* display, PALETTEENTRY* table) {
  if (!display || !table || display->pixelFormat != PixelPalette8) return 0;
  Table colors = {};
  if (!display->useDirectDraw) {
    Fill_Colors(&colors, 0, 0);
  } else if (const HDC dc = GetDC(display->window)) {
    GetSystemPaletteEntries(dc, 0, PaletteSize, colors.data());
    ReleaseDC(display->window, dc);
  }
  std::memcpy(table, colors.data(), sizeof colors);
  return 1;
}
