/* The colours of an 8-bit screen, as the system's palette manager assigns them. */
#include "platform/portable/paint/gdi.h"
#include "platform/portable/paint/nearest_color.h"
#include "platform/portable/paint/objects.h"
#include "platform/portable/paint/screen.h"
#include "platform/portable/system/seam.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <span>

namespace {

/** Entries of the screen that a palette can have; the system's own lie before and after them. */
constexpr size_t FirstFree = 10, EndFree = 246;

/** The system's own colours at both ends. */
constexpr uint32_t lowerColors[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080,
                                    0x800080, 0x008080, 0xC0C0C0, 0xC0DCC0, 0xA6CAF0};
constexpr uint32_t upperColors[] = {0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000, 0x00FF00,
                                    0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

}  // namespace

uint32_t Entry_Color(const PALETTEENTRY& entry) {
  return static_cast<uint32_t>(entry.peRed << 16 | entry.peGreen << 8 | entry.peBlue);
}

void Set_Start_Colors() {
  // Between the system's own: three bits of red and green, two of blue.
  for (uint32_t i = 0; i < 256; ++i)
    screenState.colors[i] = (i >> 5) * 255 / 7 << 16 | (i >> 2 & 7) * 255 / 7 << 8 | (i & 3) * 255 / 3;
  std::copy(std::begin(lowerColors), std::end(lowerColors), screenState.colors);
  std::copy(std::begin(upperColors), std::end(upperColors), screenState.colors + EndFree);
}

UINT Install_Colors(const uint32_t* colors, size_t count) {
  if (screenState.setup.bits != 8) return 0;
  UINT changed = 0;
  const size_t room = std::min(count, EndFree - FirstFree);
  for (size_t i = 0; i < room; ++i) {
    changed += screenState.colors[FirstFree + i] != colors[i];
    screenState.colors[FirstFree + i] = colors[i];
  }
  if (changed == 0) return 0;
  All_Canvases_Changed();
  return changed;
}

HPALETTE CreatePalette(const LOGPALETTE* palette) {
  if (!palette) return nullptr;
  HPALETTE made = new (std::nothrow) HPALETTE__{{GdiKind::Palette, false}, {}, {}, {}};
  if (!made) return nullptr;
  for (const PALETTEENTRY& entry : std::span(palette->palPalEntry, palette->palNumEntries)) {
    made->colors.push_back(Entry_Color(entry));
    made->flags.push_back(entry.peFlags);
  }
  Object_Made();
  return made;
}

HPALETTE SelectPalette(HDC dc, HPALETTE palette, BOOL background) {
  if (!dc || !palette) return nullptr;
  HPALETTE before = dc->palette;
  dc->palette = palette;
  dc->background = background != FALSE;
  return before;
}

namespace {

/** The colours of a palette that need entries of the screen: unless an entry is kept, the system may have it, or it came before.
 */
std::vector<uint32_t> Colors_To_Place(const HPALETTE__& palette) {
  std::vector<uint32_t> placed;
  const uint32_t* const system = screenState.colors;
  for (size_t i = 0; i < palette.colors.size(); ++i) {
    const uint32_t color = palette.colors[i];
    const bool owned = std::find(system, system + FirstFree, color) != system + FirstFree ||
                       std::find(system + EndFree, system + 256, color) != system + 256 ||
                       std::find(placed.begin(), placed.end(), color) != placed.end();
    if (!owned || (palette.flags[i] & PC_NOCOLLAPSE)) placed.push_back(color);
  }
  return placed;
}

}  // namespace

UINT RealizePalette(HDC dc) {
  if (!dc || dc->palette->object.stock || screenState.setup.bits != 8) return 0;
  HPALETTE palette = dc->palette;
  UINT changed = 0;
  if (!dc->background) {
    const std::vector<uint32_t> placed = Colors_To_Place(*palette);
    changed = Install_Colors(placed.data(), placed.size());
  }
  NearestColors* const nearest = Nearest_For(screenState.colors);
  palette->indices.clear();
  for (const uint32_t color : palette->colors) palette->indices.push_back(static_cast<uint8_t>(Nearest_Index(nearest, color)));
  return changed;
}

void Dc_Reachable_Colors(HDC dc, uint32_t (&colors)[256]) {
  const uint32_t* const system = screenState.colors;
  std::fill(std::begin(colors), std::end(colors), system[0]);
  std::copy(system, system + FirstFree, colors);
  std::copy(system + EndFree, system + 256, colors + EndFree);
  const HPALETTE palette = dc->palette;
  for (size_t i = palette->indices.size(); i-- > 0;) colors[palette->indices[i]] = palette->colors[i];
}

UINT GetSystemPaletteEntries(HDC dc, UINT first, UINT count, PALETTEENTRY* entries) {
  if (!dc || screenState.setup.bits != 8 || first >= 256) return 0;
  count = std::min(count, 256 - first);
  for (UINT i = 0; entries && i < count; ++i) {
    const uint32_t color = screenState.colors[first + i];
    entries[i] = {static_cast<BYTE>(color >> 16), static_cast<BYTE>(color >> 8), static_cast<BYTE>(color), 0};
  }
  return count;
}
