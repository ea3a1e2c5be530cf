#include "overlay/lines.h"

#include "overlay/motion_state.h"

#include <algorithm>

namespace {

template <int32_t Bytes>
constexpr uint32_t pixelMask = Bytes == 4 ? 0xFFFFFFFF : (1u << (8 * Bytes)) - 1;

template <int32_t Bytes>
uint32_t Load(const uint8_t* at) {
  uint32_t pixel = 0;
  for (int32_t i = Bytes; i-- > 0;) pixel = pixel << 8 | at[i];
  return pixel;
}

template <int32_t Bytes>
void Store(uint8_t* at, uint32_t pixel) {
  for (int32_t i = 0; i < Bytes; ++i, pixel >>= 8) at[i] = static_cast<uint8_t>(pixel);
}

/** `count` pixels from `at` on, `step` bytes apart. */
template <int32_t Bytes>
void Draw_Run(uint8_t* at, ptrdiff_t step, int32_t count, uint32_t color) {
  const bool keep = mdRectMode != 0;
  const uint32_t kept = mdColorFirst & pixelMask<Bytes>;
  for (int32_t i = 0; i < count; ++i, at += step) {
    if (!keep || Load<Bytes>(at) != kept) Store<Bytes>(at, color);
  }
}

template <int32_t Bytes>
int32_t Draw_Horizontal(const DDSURFACEDESC* surface, uint8_t* layer, int32_t from, int32_t to, int32_t row, uint32_t color) {
  const auto [low, high] = std::minmax(from, to);
  // In 8 and 16 bits, while mdRectMode is 0, a line with no length sets no pixel.
  const int32_t least = Bytes <= 2 && mdRectMode == 0 ? 0 : 1;
  Draw_Run<Bytes>(layer + ptrdiff_t{row} * surface->lPitch + ptrdiff_t{low} * Bytes, Bytes, std::max(high - low, least), color);
  return 0;
}

template <int32_t Bytes>
int32_t Draw_Vertical(const DDSURFACEDESC* surface, uint8_t* layer, int32_t from, int32_t to, int32_t column, uint32_t color) {
  const auto [low, high] = std::minmax(from, to);
  Draw_Run<Bytes>(layer + ptrdiff_t{low} * surface->lPitch + ptrdiff_t{column} * Bytes, surface->lPitch, std::max(high - low, 1),
                  color);
  return 0;
}

}  // namespace

const LinePrimitive horizontalLine8 = Draw_Horizontal<1>, horizontalLine16 = Draw_Horizontal<2>,
                    horizontalLine24 = Draw_Horizontal<3>, horizontalLine32 = Draw_Horizontal<4>;
const LinePrimitive verticalLine8 = Draw_Vertical<1>, verticalLine16 = Draw_Vertical<2>, verticalLine24 = Draw_Vertical<3>,
                    verticalLine32 = Draw_Vertical<4>;

std::atomic<LinePrimitive> horizontalLine = Draw_Horizontal<4>;
std::atomic<LinePrimitive> verticalLine = Draw_Vertical<4>;

void Select_Lines(int32_t displayBits) {
  static const struct {
    LinePrimitive horizontal, vertical;
  } pairs[] = {{horizontalLine8, verticalLine8},
               {horizontalLine16, verticalLine16},
               {horizontalLine24, verticalLine24},
               {horizontalLine32, verticalLine32}};
  const auto& pair = pairs[displayBits / 8 - 1];
  horizontalLine = pair.horizontal;
  verticalLine = pair.vertical;
}
