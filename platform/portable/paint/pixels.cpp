#include "platform/portable/paint/pixels.h"

#include "platform/portable/paint/nearest_color.h"
#include "platform/portable/paint/pixel_rows.h"

#include <bit>
#include <vector>

namespace {

/** The value of a mask's bits, spread to 8 bits so that all ones give 255. */
uint32_t Channel_To_Byte(uint32_t pixel, uint32_t mask) {
  const int width = std::popcount(mask);
  if (width == 0) return 0;
  const uint32_t value = (pixel & mask) >> std::countr_zero(mask);
  if (width >= 8) return value >> (width - 8);
  uint32_t byte = value << (8 - width);
  for (int filled = width; filled < 8; filled *= 2) byte |= byte >> filled;
  return byte;
}

uint32_t Channel_From_Byte(uint32_t byte, uint32_t mask) {
  const int width = std::popcount(mask);
  if (width == 0) return 0;
  const uint32_t value = width >= 8 ? byte << (width - 8) : byte >> (8 - width);
  return value << std::countr_zero(mask) & mask;
}

}  // namespace

bool Rect_Is_Empty(const RECT& rect) { return rect.left >= rect.right || rect.top >= rect.bottom; }

bool Rect_Allowed(const RECT& rect) {
  return !Rect_Is_Empty(rect) && rect.left >= -PixelLimit && rect.top >= -PixelLimit && rect.right <= PixelLimit &&
         rect.bottom <= PixelLimit;
}

RECT Rect_Common(const RECT& a, const RECT& b) {
  return {a.left > b.left ? a.left : b.left, a.top > b.top ? a.top : b.top, a.right < b.right ? a.right : b.right,
          a.bottom < b.bottom ? a.bottom : b.bottom};
}

bool Rect_Within(const RECT& rect, int32_t width, int32_t height) {
  return !Rect_Is_Empty(rect) && rect.left >= 0 && rect.top >= 0 && rect.right <= width && rect.bottom <= height;
}

bool Formats_Equal(const ColorFormat& a, const ColorFormat& b) {
  if (a.bits != b.bits) return false;
  if (a.bits == 16) return a.redMask == b.redMask && a.greenMask == b.greenMask && a.blueMask == b.blueMask;
  return a.bits != 8 || a.colors == b.colors;
}

uint32_t Color_From_Pixel(const ColorFormat& format, uint32_t pixel) {
  if (format.bits == 8) return format.colors[pixel & 255];
  if (format.bits != 16) return pixel & 0xFFFFFF;
  return Channel_To_Byte(pixel, format.redMask) << 16 | Channel_To_Byte(pixel, format.greenMask) << 8 |
         Channel_To_Byte(pixel, format.blueMask);
}

uint32_t Pixel_From_Color(const ColorFormat& format, uint32_t color) {
  if (format.bits == 8) return Nearest_Index(Nearest_For(format.colors), color);
  if (format.bits != 16) return color & 0xFFFFFF;
  return Channel_From_Byte(color >> 16 & 255, format.redMask) | Channel_From_Byte(color >> 8 & 255, format.greenMask) |
         Channel_From_Byte(color & 255, format.blueMask);
}

uint8_t* Row_Of(const PixelView& view, int32_t x, int32_t y) { return view.pixels + y * view.pitch + x * (view.format.bits / 8); }

uint8_t* Pixel_At(const PixelView& view, int32_t x, int32_t y) {
  if (!view.pixels || x < 0 || y < 0 || x >= view.width || y >= view.height) return nullptr;
  return Row_Of(view, x, y);
}

uint32_t Load_Pixel(const uint8_t* at, int32_t bits) {
  uint32_t pixel = 0;
  for (int32_t i = bits / 8; i-- > 0;) pixel = pixel << 8 | at[i];
  return pixel;
}

void Store_Pixel(uint8_t* at, int32_t bits, uint32_t pixel) {
  for (int32_t i = 0; i < bits / 8; ++i, pixel >>= 8) at[i] = static_cast<uint8_t>(pixel & 255);
}

void Fill_Pixels(const PixelView& view, const RECT& rect, uint32_t color) {
  const RECT area = Rect_Common(rect, {0, 0, view.width, view.height});
  if (!view.pixels || Rect_Is_Empty(area)) return;
  const std::vector<uint32_t> row(static_cast<size_t>(area.right - area.left), color);
  for (int32_t y = area.top; y < area.bottom; ++y)
    Write_Row(view.format, row.data(), area.right - area.left, Row_Of(view, area.left, y));
}
