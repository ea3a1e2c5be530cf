#include "platform/portable/paint/pixel_rows.h"

#include "platform/portable/paint/nearest_color.h"

#include <cstring>

namespace {

template <typename Value>
inline Value Load(const uint8_t* at) {
  Value value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

template <typename Value>
inline void Store(uint8_t* at, Value value) {
  std::memcpy(at, &value, sizeof value);
}

/** Green has five or six bits. */
template <int GreenBits>
void Read_Row_16(const uint8_t* row, int32_t count, uint32_t* colors) {
  constexpr int RedAt = 5 + GreenBits;
  for (int32_t i = 0; i < count; ++i) {
    const uint32_t pixel = Load<uint16_t>(row + 2 * i);
    const uint32_t red = pixel >> RedAt & 31, green = pixel >> 5 & ((1 << GreenBits) - 1), blue = pixel & 31;
    colors[i] =
        (red << 3 | red >> 2) << 16 | (green << (8 - GreenBits) | green >> (2 * GreenBits - 8)) << 8 | (blue << 3 | blue >> 2);
  }
}

template <int GreenBits>
void Write_Row_16(const uint32_t* colors, int32_t count, uint8_t* row) {
  constexpr uint32_t GreenMask = ((1 << GreenBits) - 1) << 5, RedMask = 31 << (5 + GreenBits);
  for (int32_t i = 0; i < count; ++i) {
    const uint32_t color = colors[i];
    Store(row + 2 * i, static_cast<uint16_t>((color >> (14 - GreenBits) & RedMask) | (color >> (11 - GreenBits) & GreenMask) |
                                             (color >> 3 & 31)));
  }
}

/** Four pixels are three words. */
void Read_Row_24(const uint8_t* row, int32_t count, uint32_t* colors) {
  for (; count >= 4; count -= 4, row += 12, colors += 4) {
    const auto a = Load<uint32_t>(row), b = Load<uint32_t>(row + 4), c = Load<uint32_t>(row + 8);
    colors[0] = a & 0xFFFFFF;
    colors[1] = a >> 24 | (b & 0xFFFF) << 8;
    colors[2] = b >> 16 | (c & 0xFF) << 16;
    colors[3] = c >> 8;
  }
  for (; count > 0; --count, row += 3) *colors++ = Load_Pixel(row, 24);
}

void Write_Row_24(const uint32_t* colors, int32_t count, uint8_t* row) {
  for (; count >= 4; count -= 4, row += 12, colors += 4) {
    const uint32_t a = colors[0], b = colors[1], c = colors[2], d = colors[3];
    Store(row, (a & 0xFFFFFF) | b << 24);
    Store(row + 4, (b >> 8 & 0xFFFF) | c << 16);
    Store(row + 8, (c >> 16 & 0xFF) | d << 8);
  }
  for (; count > 0; --count, row += 3) Store_Pixel(row, 24, *colors++);
}

void Write_Row_8(const uint32_t* palette, const uint32_t* colors, int32_t count, uint8_t* row) {
  NearestColors* const nearest = Nearest_For(palette);
  uint32_t lastColor = 0, lastIndex = Nearest_Index(nearest, 0);
  for (int32_t i = 0; i < count; ++i) {
    if (colors[i] != lastColor) lastIndex = Nearest_Index(nearest, colors[i]);
    lastColor = colors[i];
    row[i] = static_cast<uint8_t>(lastIndex);
  }
}

bool Has_Masks(const ColorFormat& format, uint32_t red, uint32_t green) {
  return format.bits == 16 && format.redMask == red && format.greenMask == green && format.blueMask == 0x1F;
}
bool Is_565(const ColorFormat& format) { return Has_Masks(format, 0xF800, 0x7E0); }
bool Is_555(const ColorFormat& format) { return Has_Masks(format, 0x7C00, 0x3E0); }

}  // namespace

void Read_Row(const ColorFormat& format, const uint8_t* row, int32_t count, uint32_t* colors) {
  if (format.bits == 32) {
    for (int32_t i = 0; i < count; ++i) colors[i] = Load<uint32_t>(row + 4 * i) & 0xFFFFFF;
  } else if (format.bits == 24) {
    Read_Row_24(row, count, colors);
  } else if (format.bits == 8) {
    for (int32_t i = 0; i < count; ++i) colors[i] = format.colors[row[i]];
  } else if (Is_565(format)) {
    Read_Row_16<6>(row, count, colors);
  } else if (Is_555(format)) {
    Read_Row_16<5>(row, count, colors);
  } else {
    for (int32_t i = 0; i < count; ++i) colors[i] = Color_From_Pixel(format, Load<uint16_t>(row + 2 * i));
  }
}

void Write_Row(const ColorFormat& format, const uint32_t* colors, int32_t count, uint8_t* row) {
  if (format.bits == 32) {
    std::memcpy(row, colors, static_cast<size_t>(count) * 4);
  } else if (format.bits == 24) {
    Write_Row_24(colors, count, row);
  } else if (format.bits == 8) {
    Write_Row_8(format.colors, colors, count, row);
  } else if (Is_565(format)) {
    Write_Row_16<6>(colors, count, row);
  } else if (Is_555(format)) {
    Write_Row_16<5>(colors, count, row);
  } else {
    for (int32_t i = 0; i < count; ++i) Store_Pixel(row + 2 * i, 16, Pixel_From_Color(format, colors[i]));
  }
}

void Map_Indices(const ColorFormat& from, const ColorFormat& to, uint8_t* map) {
  NearestColors* const nearest = Nearest_For(to.colors);
  for (int32_t i = 0; i < 256; ++i) map[i] = static_cast<uint8_t>(Nearest_Index(nearest, from.colors[i]));
}
