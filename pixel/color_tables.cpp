#include "pixel/color_tables.h"

#include "pixel/dither.h"

#include <array>

namespace {

constexpr int32_t RangeBelow = 256;

constexpr auto rangeStore = [] {
  std::array<uint8_t, 5 * 256 + 128> store{};
  for (int32_t i = 0; i < 256; ++i) store[RangeBelow + i] = static_cast<uint8_t>(i);
  for (int32_t i = 256; i < 640; ++i) store[RangeBelow + i] = 255;
  for (int32_t i = 0; i < 128; ++i) store[RangeBelow + 1024 + i] = static_cast<uint8_t>(i);
  return store;
}();

/* Fixed point, 16.16. One of the three terms of each sum includes the rounding half. For chroma that is one less than a half, so
 * that no sum exceeds 255. */
constexpr auto rgbYccStore = [] {
  std::array<int32_t, 8 * 256> store{};
  for (int32_t i = 0; i < 256; ++i) {
    const int32_t terms[8] = {19595 * i,  38470 * i, 7471 * i + 32768, -11059 * i, -21709 * i, 32768 * i + 0x807FFF,
                              -27439 * i, -5329 * i};
    for (int32_t t = 0; t < 8; ++t) store[256 * t + i] = terms[t];
  }
  return store;
}();

/* Both terms of green include a rounding half, so that neutral chroma adds 1 to green. */
constexpr auto yccRgbStore = [] {
  std::array<int32_t, 4 * 256> store{};
  for (int32_t i = 0; i < 256; ++i) {
    const int32_t x = i - 128;
    store[i] = -22554 * x + 32768;
    store[256 + i] = (116130 * x + 32768) >> 16;
    store[512 + i] = (91881 * x + 32768) >> 16;
    store[768 + i] = -46802 * x + 32768;
  }
  return store;
}();

}  // namespace

const uint8_t* rangeLimit = nullptr;
const int32_t* rgbYccTable = nullptr;
const int32_t* yccRgbTable = nullptr;

const uint8_t* Init_Range_Limit() { return rangeStore.data() + RangeBelow; }

void Free_Range_Limit(const uint8_t* table) {
  if (table == rangeLimit) rangeLimit = nullptr;
}

void Init_RGB_YCC_Table() { rgbYccTable = rgbYccStore.data(); }
void Free_RGB_YCC_Table() { rgbYccTable = nullptr; }
void Init_YCC_RGB_Table() {
  yccRgbTable = yccRgbStore.data();
  Init_Dither_Tables();
}
void Free_YCC_RGB_Table() { yccRgbTable = nullptr; }
