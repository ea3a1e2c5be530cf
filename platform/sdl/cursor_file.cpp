#include "platform/sdl/cursor_file.h"

#include <vector>

/** Number of `count` bytes, the lowest first. */
static uint32_t Load(std::span<const uint8_t> bytes, size_t at, size_t count) {
  uint32_t value = 0;
  for (size_t i = 0; i < count; ++i) value |= uint32_t{bytes[at + i]} << 8 * i;
  return value;
}

/* A file begins with a directory, whose first entry has the hot spot and the picture's offset. The picture begins with a bitmap's
 * header, whose height counts two masks, bottom rows first: the colours, black or white, and then what is transparent. Where
 * white is transparent, the screen is inverted. */
static constexpr size_t HotSpotAt = 10, PictureAt = 18, DirectoryEnd = 22;
static constexpr size_t HeaderSize = 40, ColorsSize = 8, WidthAt = 4, HeightAt = 8, BitsAt = 14;
static constexpr uint32_t MostPixels = 256;

SDL_Cursor* Cursor_From_File(std::span<const uint8_t> file) {
  if (file.size() < DirectoryEnd) return nullptr;
  const size_t at = Load(file, PictureAt, 4);
  if (at > file.size() || file.size() - at < HeaderSize + ColorsSize) return nullptr;
  const std::span<const uint8_t> picture = file.subspan(at);
  const uint32_t width = Load(picture, WidthAt, 4), height = Load(picture, HeightAt, 4) / 2;
  const size_t pitch = (width + 31) / 32 * 4, rowBytes = width / 8, size = pitch * height;
  if (Load(picture, BitsAt, 2) != 1 || width > MostPixels || height > MostPixels || width % 8 != 0) return nullptr;
  if (picture.size() - HeaderSize - ColorsSize < 2 * size) return nullptr;

  const uint8_t* const white = &picture[HeaderSize + ColorsSize];
  std::vector<uint8_t> data(rowBytes * height), mask(rowBytes * height);
  for (size_t y = 0; y < height; ++y) {
    for (size_t x = 0; x < rowBytes; ++x) {
      const size_t from = (height - 1 - y) * pitch + x, to = y * rowBytes + x;
      const uint8_t color = white[from], clear = white[size + from];
      data[to] = static_cast<uint8_t>(~(color ^ clear));
      mask[to] = static_cast<uint8_t>(~clear);
    }
  }
  return SDL_CreateCursor(data.data(), mask.data(), static_cast<int>(width), static_cast<int>(height),
                          static_cast<int>(Load(file, HotSpotAt, 2)), static_cast<int>(Load(file, HotSpotAt + 2, 2)));
}
