/* White text with a black outline, for pictures of any kind. */
#pragma once

#include "apps/velarto/camera/paint.h"

#include <array>
#include <string>

/** A letter's coverage of its pixels, 0 to 255, the outline's width larger than the letter on all sides. */
struct Letter {
  int32_t left = 0, top = 0;  ///< From the upper left corner of the letter's cell.
  int32_t width = 0, height = 0;
  std::vector<uint8_t> body, outline;
};

/** The printable ASCII characters in one size. */
struct Lettering {
  int32_t cellWidth = 0, cellHeight = 0;
  std::array<Letter, 95> letters;
};

/** Width of a character as a part of its cell's height. */
constexpr float LetterWidth = 0.53F;

/** Loads the face for cells of that height, at least 4 pixels. False when no face is found. */
bool Lettering_Load(int32_t cellHeight, Lettering* lettering);

/** Draws one line of text with its upper left corner at (x, y). What lies outside the picture is clipped; characters that are not
 * printable ASCII are skipped. */
void Lettering_Draw(const Lettering& lettering, Picture* picture, int32_t x, int32_t y, const std::string& text);
