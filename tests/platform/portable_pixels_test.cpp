/* The stretching copy against its rule, one pixel at a time. */
#include "platform/portable/paint/pixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

uint32_t palettes[2][256];

int32_t Square(uint32_t a, uint32_t b, int shift) {
  const int32_t difference = static_cast<int32_t>(a >> shift & 255) - static_cast<int32_t>(b >> shift & 255);
  return difference * difference;
}

uint32_t To_Pixel(const ColorFormat& format, uint32_t color) {
  if (format.bits != 8) return Pixel_From_Color(format, color);
  const auto far = [color](uint32_t other) {
    return Square(other, color, 0) + Square(other, color, 8) + Square(other, color, 16);
  };
  const auto nearest =
      std::min_element(format.colors, format.colors + 256, [&](uint32_t a, uint32_t b) { return far(a) < far(b); });
  return static_cast<uint32_t>(nearest - format.colors);
}

uint32_t Mix(uint32_t a, uint32_t b, int64_t weight) {
  uint32_t mixed = 0;
  for (const int shift : {0, 8, 16})
    mixed |= static_cast<uint32_t>(((a >> shift & 255) * (256 - weight) + (b >> shift & 255) * weight + 128) >> 8) << shift;
  return mixed;
}

/** The source of a column or row: in 1/256 of a source pixel when smooth, else a whole one. */
int64_t Origin(int64_t place, int64_t target, int64_t source, bool smooth) {
  if (!smooth) return (2 * place + 1) * source / (2 * target) * 256;
  return std::clamp<int64_t>(((2 * place + 1) * source * 32768 / target - 32768) >> 8, 0, (source - 1) * 256);
}

uint32_t Expected(const PixelCopy& copy, int32_t x, int32_t y, const uint32_t* key) {
  const RECT &to = copy.target, &from = copy.source;
  const int64_t width = from.right - from.left, height = from.bottom - from.top;
  const bool same = to.right - to.left == width && to.bottom - to.top == height, smooth = copy.smooth && !same && !key;
  const int64_t column = Origin(x - to.left, to.right - to.left, width, smooth);
  const int64_t row = Origin(y - to.top, to.bottom - to.top, height, smooth);
  const auto pixel = [&](int64_t i, int64_t j) {
    const int64_t left = from.left + std::min(i, width - 1), top = from.top + std::min(j, height - 1);
    return Load_Pixel(Pixel_At(copy.from, static_cast<int32_t>(left), static_cast<int32_t>(top)), copy.from.format.bits);
  };
  const uint32_t value = pixel(column >> 8, row >> 8);
  const uint32_t number = copy.from.format.bits == 32 ? value & 0xFFFFFF : value;
  const uint32_t below = Load_Pixel(Pixel_At(copy.to, x, y), copy.to.format.bits);
  if (key) return number >= key[0] && number <= key[1] ? below : value;
  if (same && Formats_Equal(copy.to.format, copy.from.format)) return value;
  uint32_t rows[2];
  for (int64_t j : {0, 1}) {
    const auto color = [&](int64_t i) { return Color_From_Pixel(copy.from.format, pixel((column >> 8) + i, (row >> 8) + j)); };
    rows[j] = Mix(color(0), color(1), column & 255);
  }
  return To_Pixel(copy.to.format, Mix(rows[0], rows[1], row & 255));
}

TEST(PortablePixels, CopiesFollowTheirRule) {
  std::mt19937 random(7);
  const auto from_to = [&](int32_t low, int32_t high) { return low + static_cast<int32_t>(random() % (high - low + 1u)); };
  for (auto& palette : palettes) std::generate(std::begin(palette), std::end(palette), [&] { return random() & 0xFCF0F8; });
  const ColorFormat formats[] = {{8, 0, 0, 0, palettes[0]},
                                 {8, 0, 0, 0, palettes[1]},
                                 {16, 0xF800, 0x7E0, 0x1F, nullptr},
                                 {16, 0x7C00, 0x3E0, 0x1F, nullptr},
                                 {16, 0xF00, 0xF0, 0xF, nullptr},
                                 {24, 0, 0, 0, nullptr},
                                 {32, 0, 0, 0, nullptr}};
  for (int32_t i = 0; i < 3000; ++i) {
    const ColorFormat &from = formats[from_to(0, 6)], &to = i % 3 == 0 ? formats[from_to(0, 6)] : from;
    const int32_t width = from_to(1, 40), height = from_to(1, 20), bytes = to.bits / 8, pitch = 48 * bytes + 5;
    std::vector<uint8_t> source(static_cast<size_t>(160 * height)), target(static_cast<size_t>(pitch * 30));
    for (auto* bits : {&source, &target}) std::generate(bits->begin(), bits->end(), [&] { return random() % 4 ? random() : 0; });
    const RECT part = {from_to(0, width - 1), from_to(0, height - 1), width, height};
    const int32_t scale = from_to(0, 3), partWidth = part.right - part.left, partHeight = part.bottom - part.top;
    RECT place = {from_to(-20, 30), from_to(-10, 20), 0, 0};
    place.right = place.left + (scale == 0 ? from_to(1, 60) : std::max(partWidth * scale / 2, 1));
    place.bottom = place.top + (scale == 0 ? from_to(1, 40) : std::max(partHeight * scale / 2, 1));
    const PixelCopy copy = {
        {target.data(), 48, 30, pitch, to}, place, {source.data(), width, height, 160, from}, part, i % 2 == 0};
    const uint32_t low = random() % 2 ? 0 : random() & 0xFF, keys[] = {low, random() % 2 ? low : low + 0x1000};
    const uint32_t* const key = i % 3 == 1 ? keys : nullptr;

    std::vector<uint8_t> expected = target;
    for (int32_t y = std::max(place.top, 0); y < std::min(place.bottom, 30); ++y)
      for (int32_t x = std::max(place.left, 0); x < std::min(place.right, 48); ++x)
        Store_Pixel(&expected[static_cast<size_t>(y * pitch + x * bytes)], to.bits, Expected(copy, x, y, key));
    key ? Copy_Pixels_Keyed(copy, key[0], key[1]) : Copy_Pixels(copy);
    ASSERT_EQ(target, expected) << "copy " << i << ", " << from.bits << " to " << to.bits << " bits";
  }
}

}  // namespace
