#include "platform/portable/pixels.h"

#include <bit>
#include <cstring>
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

int32_t Channel_Distance(uint32_t a, uint32_t b, int shift) {
  const int32_t difference = static_cast<int32_t>(a >> shift & 255) - static_cast<int32_t>(b >> shift & 255);
  return difference * difference;
}

/** The first index of the colour nearest to `color`. */
uint32_t Nearest_Color(const uint32_t* colors, uint32_t color) {
  uint32_t best = 0;
  int32_t bestDistance = INT32_MAX;
  for (uint32_t i = 0; i < 256 && bestDistance > 0; ++i) {
    const int32_t distance =
        Channel_Distance(colors[i], color, 0) + Channel_Distance(colors[i], color, 8) + Channel_Distance(colors[i], color, 16);
    if (distance >= bestDistance) continue;
    bestDistance = distance;
    best = i;
  }
  return best;
}

/** A colour from its bytes B, G, R. */
uint32_t Load_Color(const uint8_t* bytes) { return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16; }

void Read_Row(const ColorFormat& format, const uint8_t* row, int32_t count, uint32_t* colors) {
  switch (format.bits) {
    case 32:
      for (int32_t i = 0; i < count; ++i, row += 4) colors[i] = Load_Color(row);
      return;
    case 24:
      for (int32_t i = 0; i < count; ++i, row += 3) colors[i] = Load_Color(row);
      return;
    default:
      for (int32_t i = 0; i < count; ++i, row += format.bits / 8)
        colors[i] = Color_From_Pixel(format, Load_Pixel(row, format.bits));
  }
}

void Write_Row(const ColorFormat& format, const uint32_t* colors, int32_t count, uint8_t* row) {
  if (format.bits == 32) {
    std::memcpy(row, colors, static_cast<size_t>(count) * 4);
    return;
  }
  // Neighbours are often alike, and the nearest of 256 colours is dear.
  uint32_t lastColor = 0;
  uint32_t lastPixel = Pixel_From_Color(format, 0);
  for (int32_t i = 0; i < count; ++i, row += format.bits / 8) {
    if (colors[i] != lastColor) lastPixel = Pixel_From_Color(format, colors[i]);
    lastColor = colors[i];
    Store_Pixel(row, format.bits, lastPixel);
  }
}

/** Weight w of 256 for b, the rest for a. */
inline uint32_t Mix_Colors(uint32_t a, uint32_t b, uint32_t w) {
  const uint32_t redBlue = ((a & 0xFF00FF) * (256 - w) + (b & 0xFF00FF) * w + 0x800080) >> 8 & 0xFF00FF;
  const uint32_t green = ((a & 0x00FF00) * (256 - w) + (b & 0x00FF00) * w + 0x008000) >> 8 & 0x00FF00;
  return redBlue | green;
}

/** Between which two source places a target place lies. */
struct MapEntry {
  int32_t first, second;
  uint32_t weight;  ///< Of the second, of 256.
};

MapEntry Map_Place(int64_t place, int64_t targetSize, int64_t sourceSize, bool smooth) {
  if (!smooth) {
    const auto nearest = static_cast<int32_t>((2 * place + 1) * sourceSize / (2 * targetSize));
    return {nearest, nearest, 0};
  }
  // Centres of places are laid over each other; in 1/65536 of a source place.
  const int64_t at = (2 * place + 1) * sourceSize * 32768 / targetSize - 32768;
  if (at <= 0) return {0, 0, 0};
  const auto first = static_cast<int32_t>(at >> 16);
  if (first >= sourceSize - 1) return {static_cast<int32_t>(sourceSize - 1), static_cast<int32_t>(sourceSize - 1), 0};
  return {first, first + 1, static_cast<uint32_t>(at >> 8 & 255)};
}

/** What all copies have in common: the part of the target that lies in the view, and the source column of each column of it. */
struct CopyPlan {
  RECT area;
  int32_t width;
  bool sameWidth, sameHeight;
  bool smooth;
  std::vector<MapEntry> columns;
  std::vector<uint32_t> source;   ///< One source row as colours.
  std::vector<uint32_t> rows[2];  ///< Two source rows stretched to the target's width,
  int32_t rowsOf[2];              ///< and which ones they are.
  std::vector<uint32_t> mixed;
};

/** Kept from copy to copy, so that showing a picture allocates nothing. */
thread_local CopyPlan sharedPlan;

/** Gives false when nothing of the target lies in the view. */
bool Plan_Copy(CopyPlan& plan, const PixelCopy& copy, bool smooth) {
  plan.area = Rect_Common(copy.target, {0, 0, copy.to.width, copy.to.height});
  if (Rect_Is_Empty(plan.area) || !copy.to.pixels || !copy.from.pixels) return false;
  plan.width = plan.area.right - plan.area.left;
  const int32_t targetWidth = copy.target.right - copy.target.left, sourceWidth = copy.source.right - copy.source.left;
  plan.sameWidth = targetWidth == sourceWidth;
  plan.sameHeight = copy.target.bottom - copy.target.top == copy.source.bottom - copy.source.top;
  plan.smooth = smooth && !(plan.sameWidth && plan.sameHeight);
  plan.columns.resize(static_cast<size_t>(plan.width));
  for (int32_t i = 0; i < plan.width; ++i) {
    const int32_t place = plan.area.left - copy.target.left + i;
    plan.columns[static_cast<size_t>(i)] = Map_Place(place, targetWidth, sourceWidth, plan.smooth);
  }
  return true;
}

MapEntry Map_Row(const CopyPlan& plan, const PixelCopy& copy, int32_t y) {
  return Map_Place(y - copy.target.top, copy.target.bottom - copy.target.top, copy.source.bottom - copy.source.top, plan.smooth);
}

uint8_t* Row_Of(const PixelView& view, int32_t x, int32_t y) { return view.pixels + y * view.pitch + x * (view.format.bits / 8); }

/** A source row stretched to the target's width; `slot` of plan.rows receives it unless it is there already. */
const uint32_t* Stretch_Row(CopyPlan& plan, const PixelCopy& copy, int32_t row, int slot) {
  std::vector<uint32_t>& out = plan.rows[slot];
  if (plan.rowsOf[slot] == row) return out.data();
  const int32_t sourceWidth = copy.source.right - copy.source.left;
  Read_Row(copy.from.format, Row_Of(copy.from, copy.source.left, copy.source.top + row), sourceWidth, plan.source.data());
  const uint32_t* source = plan.source.data();
  const MapEntry* columns = plan.columns.data();
  uint32_t* to = out.data();
  if (plan.smooth) {
    for (int32_t i = 0; i < plan.width; ++i)
      to[i] = Mix_Colors(source[columns[i].first], source[columns[i].second], columns[i].weight);
  } else {
    for (int32_t i = 0; i < plan.width; ++i) to[i] = source[columns[i].first];
  }
  plan.rowsOf[slot] = row;
  return to;
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
  if (format.bits == 8) return Nearest_Color(format.colors, color);
  if (format.bits != 16) return color & 0xFFFFFF;
  return Channel_From_Byte(color >> 16 & 255, format.redMask) | Channel_From_Byte(color >> 8 & 255, format.greenMask) |
         Channel_From_Byte(color & 255, format.blueMask);
}

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

void Copy_Pixels(const PixelCopy& copy) {
  CopyPlan& plan = sharedPlan;
  if (!Plan_Copy(plan, copy, copy.smooth)) return;
  const auto width = static_cast<size_t>(plan.width);
  plan.source.resize(static_cast<size_t>(copy.source.right - copy.source.left));
  plan.mixed.resize(width);
  for (auto& row : plan.rows) row.resize(width);
  plan.rowsOf[0] = plan.rowsOf[1] = -1;
  const bool plain = plan.sameWidth && plan.sameHeight && Formats_Equal(copy.to.format, copy.from.format);
  for (int32_t y = plan.area.top; y < plan.area.bottom; ++y) {
    uint8_t* to = Row_Of(copy.to, plan.area.left, y);
    const MapEntry place = Map_Row(plan, copy, y);
    if (plain) {
      const uint8_t* from = Row_Of(copy.from, copy.source.left + plan.columns[0].first, copy.source.top + place.first);
      std::memcpy(to, from, width * static_cast<size_t>(copy.to.format.bits / 8));
      continue;
    }
    // Rows alternate between the two slots, so that the second one of a pair is there already as the first of the next.
    const uint32_t* first = Stretch_Row(plan, copy, place.first, place.first & 1);
    if (place.weight == 0) {
      Write_Row(copy.to.format, first, plan.width, to);
      continue;
    }
    const uint32_t* second = Stretch_Row(plan, copy, place.second, place.second & 1);
    uint32_t* mixed = plan.mixed.data();
    for (int32_t i = 0; i < plan.width; ++i) mixed[i] = Mix_Colors(first[i], second[i], place.weight);
    Write_Row(copy.to.format, mixed, plan.width, to);
  }
}

void Copy_Pixels_Keyed(const PixelCopy& copy, uint32_t keyLow, uint32_t keyHigh) {
  CopyPlan& plan = sharedPlan;
  if (!Plan_Copy(plan, copy, false)) return;
  const int32_t bits = copy.to.format.bits;
  const int32_t bytes = bits / 8;
  // The unused byte of a 32-bit pixel is no part of its colour.
  const uint32_t colorBits = bits == 32 ? 0xFFFFFF : 0xFFFFFFFF;
  for (int32_t y = plan.area.top; y < plan.area.bottom; ++y) {
    uint8_t* to = Row_Of(copy.to, plan.area.left, y);
    const uint8_t* from = Row_Of(copy.from, copy.source.left, copy.source.top + Map_Row(plan, copy, y).first);
    for (int32_t i = 0; i < plan.width; ++i, to += bytes) {
      const uint32_t pixel = Load_Pixel(from + plan.columns[static_cast<size_t>(i)].first * bytes, bits);
      const uint32_t value = pixel & colorBits;
      if (value < (keyLow & colorBits) || value > (keyHigh & colorBits)) Store_Pixel(to, bits, pixel);
    }
  }
}
