/* The colours of an 8-bit screen, as the system's palette manager gives them out. */
#include "platform/portable/machine.h"
#include "platform/portable/paint/gdi.h"

#include <algorithm>
#include <new>

namespace {

/** Entries of the screen that a palette can have; the system's own lie ahead of and behind them. */
constexpr size_t FirstFree = 10, EndFree = 246;

uint32_t Entry_Color(const PALETTEENTRY& entry) {
  return static_cast<uint32_t>(entry.peRed << 16 | entry.peGreen << 8 | entry.peBlue);
}

}  // namespace

UINT Install_Colors(const uint32_t* colors, size_t count) {
  if (machine.setup.bits != 8) return 0;
  UINT changed = 0;
  const size_t room = std::min(count, EndFree - FirstFree);
  for (size_t i = 0; i < room; ++i) {
    changed += machine.colors[FirstFree + i] != colors[i];
    machine.colors[FirstFree + i] = colors[i];
  }
  if (changed == 0) return 0;
  for (HWND window : allWindows) Desktop_Pixels_Changed(window);
  return changed;
}

HPALETTE CreatePalette(const LOGPALETTE* palette) {
  if (!palette) return nullptr;
  HPALETTE made = new (std::nothrow) HPALETTE__{{GdiKind::Palette, false}, {}};
  if (!made) return nullptr;
  made->colors.resize(palette->palNumEntries);
  std::transform(palette->palPalEntry, palette->palPalEntry + palette->palNumEntries, made->colors.begin(), Entry_Color);
  Object_Made();
  return made;
}

HPALETTE SelectPalette(HDC dc, HPALETTE palette, BOOL) {
  if (!dc || !palette) return nullptr;
  HPALETTE before = dc->palette;
  dc->palette = palette;
  return before;
}

UINT RealizePalette(HDC dc) {
  if (!dc || dc->palette->head.stock) return 0;
  // A colour that the system has already, or that came before, takes no entry.
  std::vector<uint32_t> placed;
  for (const uint32_t color : dc->palette->colors) {
    const bool owned = std::find(machine.colors, machine.colors + FirstFree, color) != machine.colors + FirstFree ||
                       std::find(machine.colors + EndFree, machine.colors + 256, color) != machine.colors + 256;
    if (!owned && std::find(placed.begin(), placed.end(), color) == placed.end()) placed.push_back(color);
  }
  return Install_Colors(placed.data(), placed.size());
}

UINT GetSystemPaletteEntries(HDC dc, UINT first, UINT count, PALETTEENTRY* entries) {
  if (!dc || machine.setup.bits != 8 || first >= 256) return 0;
  count = std::min(count, 256 - first);
  for (UINT i = 0; entries && i < count; ++i) {
    const uint32_t color = machine.colors[first + i];
    entries[i] = {static_cast<BYTE>(color >> 16), static_cast<BYTE>(color >> 8), static_cast<BYTE>(color), 0};
  }
  return count;
}
