#include "platform/portable/paint/face.h"
#include "platform/portable/paint/gdi.h"
#include "platform/portable/paint/objects.h"

#include <ft2build.h>

#include <algorithm>
#include <string_view>

#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H

namespace {

const char* const faceFiles[] = {
    "/usr/share/fonts/truetype/liberation/LiberationMono-Regular.ttf",
    "/usr/share/fonts/truetype/liberation2/LiberationMono-Regular.ttf",
    "/usr/share/fonts/liberation-mono/LiberationMono-Regular.ttf",
    "/usr/share/fonts/liberation/LiberationMono-Regular.ttf",
    "/usr/share/fonts/liberation-fonts/LiberationMono-Regular.ttf",
    "/usr/share/fonts/TTF/LiberationMono-Regular.ttf",
    "/usr/local/share/fonts/LiberationMono-Regular.ttf",
    "/usr/share/fonts/truetype/croscore/Cousine-Regular.ttf",
};

/** The face, opened when first used; face is null if there is none. */
struct OpenFace {
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  FT_Long ascent = 0, descent = 0, advance = 0;  ///< In the units of the face.

  OpenFace() {
    if (FT_Init_FreeType(&library) != 0) return;
    for (const char* file : faceFiles)
      if (FT_New_Face(library, file, 0, &face) == 0) break;
    if (!face) return;
    const auto* measures = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    ascent = measures ? measures->usWinAscent : face->ascender;
    descent = measures ? measures->usWinDescent : -face->descender;
    advance = face->max_advance_width;
  }
  ~OpenFace() {
    if (face) FT_Done_Face(face);
    if (library) FT_Done_FreeType(library);
  }
  OpenFace(const OpenFace&) = delete;
  OpenFace& operator=(const OpenFace&) = delete;
};

/** The face scaled to a font's cell. */
struct ScaledFace {
  FT_Face face;
  int32_t cellWidth, cellHeight;
  int32_t baseline;  ///< Rows from the top of the cell.
};

bool Scale_Face(const HFONT__& font, ScaledFace& scaled) {
  static const OpenFace open;
  if (!open.face || open.ascent + open.descent <= 0 || open.advance <= 0) return false;
  const FT_Long units = open.face->units_per_EM, cell = open.ascent + open.descent;
  const FT_Long natural = (font.height * open.advance + cell / 2) / cell;
  const FT_Long width = font.width > 0 ? font.width : std::max<FT_Long>(natural, 1);
  // FreeType takes the em square: from the cell's height by ascent and descent, from its width by the advance.
  FT_Size_RequestRec request{FT_SIZE_REQUEST_TYPE_NOMINAL, width * 64 * units / open.advance, font.height * 64 * units / cell, 0,
                             0};
  if (FT_Request_Size(open.face, &request) != 0) return false;
  const FT_Long baseline = (font.height * open.ascent + cell / 2) / cell;
  scaled = {open.face, static_cast<int32_t>(width), font.height, static_cast<int32_t>(baseline)};
  return true;
}

uint32_t Blend_Channel(uint32_t below, uint32_t above, uint32_t coverage, int shift) {
  const uint32_t mixed = (below >> shift & 255) * (255 - coverage) + (above >> shift & 255) * coverage;
  return (mixed + 127) / 255 << shift;
}

void Blend_Pixel(const PixelView& view, int32_t x, int32_t y, uint32_t color, uint32_t coverage) {
  uint8_t* at = Pixel_At(view, x, y);
  if (!at || coverage == 0) return;
  const uint32_t below = Color_From_Pixel(view.format, Load_Pixel(at, view.format.bits));
  const uint32_t mixed = Blend_Channel(below, color, coverage, 16) | Blend_Channel(below, color, coverage, 8) |
                         Blend_Channel(below, color, coverage, 0);
  Store_Pixel(at, view.format.bits, Pixel_From_Color(view.format, mixed));
}

/** Draws the glyph in the face's slot with its origin at (x, y) of the view. */
void Draw_Glyph(const PixelView& view, FT_GlyphSlot slot, int32_t x, int32_t y, uint32_t color) {
  const FT_Bitmap& bitmap = slot->bitmap;
  for (uint32_t row = 0; row < bitmap.rows; ++row) {
    const uint8_t* coverage = bitmap.buffer + static_cast<ptrdiff_t>(row) * bitmap.pitch;
    for (uint32_t column = 0; column < bitmap.width; ++column)
      Blend_Pixel(view, x + slot->bitmap_left + static_cast<int32_t>(column), y - slot->bitmap_top + static_cast<int32_t>(row),
                  color, coverage[column]);
  }
}

/** Draws a text with its upper left corner at a point of the DC. It may start far outside; what is drawn of it is the part whose
 * cells touch the canvas. */
void Draw_Line(const HDC__& dc, const Canvas& canvas, const ScaledFace& scaled, POINT at, std::string_view text) {
  const int64_t top = int64_t{at.y} - canvas.origin.y;
  int64_t left = int64_t{at.x} - canvas.origin.x;
  if (top + scaled.cellHeight <= 0 || top >= canvas.view.height) return;
  const uint32_t color = Swap_Color(dc.textColor);
  for (const char letter : text) {
    const int64_t from = left;
    left += scaled.cellWidth;
    if (left + scaled.cellWidth <= 0 || from - scaled.cellWidth >= canvas.view.width) continue;
    const auto column = static_cast<int32_t>(from), row = static_cast<int32_t>(top);
    if (dc.backgroundMode == OPAQUE)
      Fill_Pixels(canvas.view, {column, row, column + scaled.cellWidth, row + scaled.cellHeight}, 0xFFFFFF);
    if (FT_Load_Char(scaled.face, static_cast<uint8_t>(letter), FT_LOAD_RENDER) != 0) continue;
    Draw_Glyph(canvas.view, scaled.face->glyph, column, row + scaled.baseline, color);
  }
}

}  // namespace

std::span<const char* const> Face_Files() { return faceFiles; }

BOOL TextOutA(HDC dc, int x, int y, LPCSTR text, int length) {
  ScaledFace scaled;
  if (!dc || !text || length < 0 || !Scale_Face(*dc->font, scaled)) return FALSE;
  for (const Canvas& canvas : Dc_Canvases(dc)) Draw_Line(*dc, canvas, scaled, {x, y}, {text, static_cast<size_t>(length)});
  dc->changed = true;
  return TRUE;
}
