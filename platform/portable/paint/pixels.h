/* Pixels: formats, and the stretching copy that GDI and DirectDraw use. For the files of the layer alone. */
#pragma once

#include "platform/portable/system/types.h"

/** How a pixel's bits make a colour (0xRRGGBB). */
struct ColorFormat {
  int32_t bits;                           ///< 8, 16, 24 or 32.
  uint32_t redMask, greenMask, blueMask;  ///< Used with 16 bits only; wider pixels are B, G, R in memory.
  const uint32_t* colors;                 ///< 256 colours, with 8 bits.
};

/** A picture in memory, top row first. */
struct PixelView {
  uint8_t* pixels;  ///< Null: there are none.
  int32_t width, height;
  ptrdiff_t pitch;  ///< Bytes from row to row; negative if the bottom row comes first in memory.
  ColorFormat format;
};

/** A stretching copy. The rectangles are not empty and reach at most PixelLimit from the origin. */
struct PixelCopy {
  PixelView to;
  RECT target;  ///< May reach outside.
  PixelView from;
  RECT source;  ///< Lies within.
  bool smooth;  ///< Bilinear where the sizes differ; else the nearest pixel.
};
constexpr LONG PixelLimit = 1 << 24;

bool Rect_Is_Empty(const RECT& rect);
/** Whether the rectangle isn't empty and lies within PixelLimit. */
bool Rect_Allowed(const RECT& rect);
RECT Rect_Common(const RECT& a, const RECT& b);
bool Rect_Within(const RECT& rect, int32_t width, int32_t height);

bool Formats_Equal(const ColorFormat& a, const ColorFormat& b);
uint32_t Color_From_Pixel(const ColorFormat& format, uint32_t pixel);
uint32_t Pixel_From_Color(const ColorFormat& format, uint32_t color);

/** Where a pixel of the view lies. */
uint8_t* Row_Of(const PixelView& view, int32_t x, int32_t y);
/** The same, or null outside of the view. */
uint8_t* Pixel_At(const PixelView& view, int32_t x, int32_t y);
uint32_t Load_Pixel(const uint8_t* at, int32_t bits);
void Store_Pixel(uint8_t* at, int32_t bits, uint32_t pixel);
/** Sets all pixels of the rectangle that lie in the view. */
void Fill_Pixels(const PixelView& view, const RECT& rect, uint32_t color);

/** Copies with conversion between formats. Both views may be the same only if the rectangles don't overlap. */
void Copy_Pixels(const PixelCopy& copy);
/** The same between views of one format, pixel values unchanged, without those from keyLow to keyHigh; with keyLow above keyHigh
 * all are copied. Never smooth. */
void Copy_Pixels_Keyed(const PixelCopy& copy, uint32_t keyLow, uint32_t keyHigh);
