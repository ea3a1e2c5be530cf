#include "apps/velarto/camera/lettering.h"

#include "platform/portable/paint/face.h"

#include <ft2build.h>

#include <algorithm>
#include <memory>

#include FT_FREETYPE_H

static constexpr char FirstLetter = ' ', LastLetter = '~';

/** The library and the face, open while letters are loaded. */
struct OpenedFace {
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  ~OpenedFace() {
    if (face) FT_Done_Face(face);
    if (library) FT_Done_FreeType(library);
  }
};

static bool Open_Face(OpenedFace* opened) {
  if (FT_Init_FreeType(&opened->library) != 0) return false;
  for (const char* file : Face_Files())
    if (FT_New_Face(opened->library, file, 0, &opened->face) == 0) return true;
  return false;
}

static size_t Letter_Index(const Letter& letter, int32_t x, int32_t y) {
  return static_cast<size_t>(y) * static_cast<size_t>(letter.width) + static_cast<size_t>(x);
}

/** Each pixel gets the highest coverage that a disc around it touches. */
static void Make_Outline(Letter* letter, int32_t radius) {
  letter->outline.assign(letter->body.size(), 0);
  for (int32_t y = 0; y < letter->height; ++y) {
    for (int32_t x = 0; x < letter->width; ++x) {
      uint8_t& most = letter->outline[Letter_Index(*letter, x, y)];
      for (int32_t row = std::max(y - radius, 0); row <= std::min(y + radius, letter->height - 1); ++row) {
        for (int32_t column = std::max(x - radius, 0); column <= std::min(x + radius, letter->width - 1); ++column) {
          const int32_t distance = (row - y) * (row - y) + (column - x) * (column - x);
          if (distance <= radius * radius) most = std::max(most, letter->body[Letter_Index(*letter, column, row)]);
        }
      }
    }
  }
}

static void Load_Letter(FT_GlyphSlot slot, int32_t baseline, int32_t border, Letter* letter) {
  const FT_Bitmap& bitmap = slot->bitmap;
  const auto columns = static_cast<int32_t>(bitmap.width), rows = static_cast<int32_t>(bitmap.rows);
  *letter = {slot->bitmap_left - border, baseline - slot->bitmap_top - border, columns + 2 * border, rows + 2 * border, {}, {}};
  letter->body.assign(static_cast<size_t>(letter->width) * static_cast<size_t>(letter->height), 0);
  for (int32_t row = 0; row < rows; ++row) {
    const uint8_t* const from = bitmap.buffer + static_cast<ptrdiff_t>(row) * bitmap.pitch;
    std::copy_n(from, columns, &letter->body[Letter_Index(*letter, border, row + border)]);
  }
  Make_Outline(letter, border);
}

bool Lettering_Load(int32_t cellHeight, Lettering* lettering) {
  OpenedFace opened;
  if (!Open_Face(&opened)) return false;
  const FT_Face face = opened.face;
  if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(std::max(cellHeight * 7 / 8, 4))) != 0) return false;
  lettering->cellHeight = cellHeight;
  lettering->cellWidth = static_cast<int32_t>(face->size->metrics.max_advance >> 6);
  const int32_t baseline = cellHeight * 3 / 4, border = std::max(cellHeight / 14, 1);
  for (char c = FirstLetter; c <= LastLetter; ++c) {
    if (FT_Load_Char(face, static_cast<FT_ULong>(c), FT_LOAD_RENDER) != 0) continue;
    Load_Letter(face->glyph, baseline, border, &lettering->letters[static_cast<size_t>(c - FirstLetter)]);
  }
  return true;
}

static void Draw_Coverage(const Letter& letter, const std::vector<uint8_t>& coverage, Picture* picture, int32_t x, int32_t y,
                          const Color& color) {
  for (int32_t row = std::max(-y, 0); row < std::min(letter.height, picture->height - y); ++row) {
    for (int32_t column = std::max(-x, 0); column < std::min(letter.width, picture->width - x); ++column) {
      const uint8_t part = coverage[Letter_Index(letter, column, row)];
      if (part > 0) Paint_Pixel(Paint_At(picture, x + column, y + row), color, static_cast<float>(part) / 255);
    }
  }
}

void Lettering_Draw(const Lettering& lettering, Picture* picture, int32_t x, int32_t y, const std::string& text) {
  // All outlines first: none may cover the letter beside it.
  for (const bool outline : {true, false}) {
    int32_t left = x;
    for (const char c : text) {
      if (c < FirstLetter || c > LastLetter) continue;
      const Letter& letter = lettering.letters[static_cast<size_t>(c - FirstLetter)];
      const Color color = outline ? Color{0, 0, 0} : Color{255, 255, 255};
      Draw_Coverage(letter, outline ? letter.outline : letter.body, picture, left + letter.left, y + letter.top, color);
      left += lettering.cellWidth;
    }
  }
}
