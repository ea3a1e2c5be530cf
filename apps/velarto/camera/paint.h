/* Filled shapes with smooth edges, in a picture. Places are pixels from the picture's upper left corner; what lies outside is
 * clipped. */
#pragma once

#include "apps/velarto/picture.h"

struct Point {
  float x, y;
};

/** Each 0 to 255. */
struct Color {
  float red, green, blue;
};

/** part 0: the first colour, 1: the second. */
inline Color Color_Mix(const Color& a, const Color& b, float part) {
  return {a.red + (b.red - a.red) * part, a.green + (b.green - a.green) * part, a.blue + (b.blue - a.blue) * part};
}

struct Brush {
  Color color;
  float opacity = 1;                           ///< 0 to 1.
  const std::vector<uint8_t>* mask = nullptr;  ///< A byte a pixel, top row first: how much of the shape is to be seen. Null: all.
};

/** The pixel's three bytes; x and y lie in the picture. */
inline uint8_t* Paint_At(Picture* picture, int32_t x, int32_t y) {
  const auto row = static_cast<size_t>(picture->height - 1 - y), width = static_cast<size_t>(picture->width);
  return &picture->pixels[3 * (row * width + static_cast<size_t>(x))];
}

/** Mixes the colour into a pixel of the picture; part 0: nothing, 1: the colour alone. */
inline void Paint_Pixel(uint8_t* pixel, const Color& color, float part) {
  const auto weight = static_cast<int32_t>(part * 256);
  const float colors[] = {color.blue, color.green, color.red};
  for (int i = 0; i < 3; ++i) {
    pixel[i] = static_cast<uint8_t>((pixel[i] * (256 - weight) + static_cast<int32_t>(colors[i]) * weight + 128) >> 8);
  }
}

/** A closed polygon; where it crosses itself, what is inside twice is outside. */
void Paint_Polygon(Picture* picture, std::span<const Point> points, const Brush& brush);
void Paint_Ellipse(Picture* picture, Point center, float radiusX, float radiusY, const Brush& brush);
void Paint_Box(Picture* picture, float left, float top, float right, float bottom, const Brush& brush);
/** A straight stroke. */
void Paint_Line(Picture* picture, Point from, Point to, float thickness, const Brush& brush);
