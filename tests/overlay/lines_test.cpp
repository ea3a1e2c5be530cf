#include "overlay/lines.h"

#include "overlay/motion_state.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr int32_t Columns = 12, Rows = 5, Pitch = 64;
constexpr uint32_t Color = 0xA1B2C3D4, Kept = 0x11223344, Other = 0x55667788;

/** Runs a primitive over a buffer; pixel values are cut to `bytes`. */
std::vector<uint32_t> Drawn(LinePrimitive line, int32_t bytes, int32_t from, int32_t to, int32_t at, uint32_t before) {
  std::vector<uint8_t> buffer(Pitch * Rows, 0xEE);
  const auto place = [&](int32_t i) { return &buffer[static_cast<size_t>(i / Columns * Pitch + i % Columns * bytes)]; };
  for (int32_t i = 0; i < Columns * Rows; ++i) {
    const uint32_t pixel = i % 3 == 0 ? Kept : before;
    std::copy_n(reinterpret_cast<const uint8_t*>(&pixel), bytes, place(i));
  }
  DDSURFACEDESC surface = {};
  surface.lPitch = Pitch;
  EXPECT_EQ(line(&surface, buffer.data(), from, to, at, Color), 0);
  std::vector<uint32_t> pixels;
  for (int32_t i = 0; i < Columns * Rows; ++i) {
    uint32_t pixel = 0;
    std::copy_n(place(i), bytes, reinterpret_cast<uint8_t*>(&pixel));
    pixels.push_back(pixel);
  }
  for (int32_t row = 0; row < Rows; ++row) {
    for (int32_t i = Columns * bytes; i < Pitch; ++i) EXPECT_EQ(buffer[static_cast<size_t>(row * Pitch + i)], 0xEE);
  }
  return pixels;
}

TEST(Lines, EachPrimitiveInBothModes) {
  const LinePrimitive horizontal[] = {horizontalLine8, horizontalLine16, horizontalLine24, horizontalLine32};
  const LinePrimitive vertical[] = {verticalLine8, verticalLine16, verticalLine24, verticalLine32};
  mdColorFirst = Kept;
  for (int32_t bytes = 1; bytes <= 4; ++bytes) {
    const auto cut = [&](uint32_t pixel) { return bytes == 4 ? pixel : pixel & ((1u << 8 * bytes) - 1); };
    for (const int32_t mode : {0, 1}) {
      mdRectMode = mode;
      for (const bool across : {true, false}) {
        for (const auto& [from, to] : {std::pair{1, 4}, {4, 1}, {0, 5}, {2, 2}}) {
          SCOPED_TRACE(testing::Message() << bytes << " bytes, mode " << mode << ", " << from << " to " << to << ", " << across);
          const int32_t low = std::min(from, to), high = std::max(from, to);
          const bool onePixel = from == to && (mode == 1 || bytes > 2 || !across);
          std::vector<uint32_t> expected;
          for (int32_t i = 0; i < Columns * Rows; ++i) {
            const int32_t along = across ? i % Columns : i / Columns, beside = across ? i / Columns : i % Columns;
            const bool on = beside == 3 && along >= low && along < high + onePixel;
            const bool keeps = i % 3 == 0;
            expected.push_back(cut(on && !(keeps && mode == 1) ? Color : keeps ? Kept : Other));
          }
          EXPECT_EQ(Drawn((across ? horizontal : vertical)[bytes - 1], bytes, from, to, 3, Other), expected);
        }
      }
    }
  }
  mdRectMode = 0;
}

}  // namespace
