/* What the tests of the display share: a machine with one window, displays and rasters that go by themselves. */
#pragma once

#include "decode/buffers.h"
#include "display/context.h"
#include "display/present.h"
#include "pixel/convert.h"
#include "support/window.h"

#include "platform/win32.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>

/** A screen and a window. Fails the test when something is still alive at its end. */
struct Machine : TestWindow {
  const int32_t aliveAtStart = Screen_Objects_Alive();

  using TestWindow::TestWindow;
  ~Machine() { EXPECT_EQ(Screen_Objects_Alive(), aliveAtStart); }
};

struct Releaser {
  void operator()(JdecDisplay* display) const { Display_Destroy(display); }
  void operator()(JdecRaster* raster) const { Arena_Free(raster); }
};
using Display = std::unique_ptr<JdecDisplay, Releaser>;
using Raster = std::unique_ptr<JdecRaster, Releaser>;

inline Raster Noise_Raster(int32_t width, int32_t height, int32_t pixelFormat) {
  static constexpr int32_t bits[] = {8, 16, 16, 24, 32};
  static constexpr uint32_t used[] = {~0u, 0x7FFF7FFF, ~0u, ~0u, 0x00FFFFFF};
  Raster raster(Raster_New(width, height, bits[pixelFormat]));
  std::mt19937 random(static_cast<uint32_t>(width * height));
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t i = 0; i < raster->pitch; ++i) {
      raster->rows[y][i] = static_cast<uint8_t>(random() & used[pixelFormat] >> i % 4 * 8);
    }
  }
  return raster;
}

/** 32 bits, of one colour. */
inline Raster Plain_Raster(int32_t width, int32_t height, uint32_t color) {
  Raster raster(Raster_New(width, height, 32));
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) std::memcpy(raster->rows[y] + 4 * x, &color, 4);
  }
  return raster;
}

inline void Show(const Display& display, const Raster& raster, int32_t mdMode = 0) {
  Display_Present(display.get(), raster.get(), 0, 0, raster->width, raster->height, mdMode);
}

/** The window's upper left corner holds exactly the raster. */
inline void Expect_Shown(HWND window, const Raster& raster) {
  int32_t width = 0, height = 0, pitch = 0;
  const uint8_t* pixels = Screen_Window_Pixels(window, &width, &height, &pitch);
  ASSERT_TRUE(pixels && raster->width <= width && raster->height <= height);
  for (int32_t y = 0; y < raster->height; ++y) {
    ASSERT_EQ(std::memcmp(pixels + y * pitch, raster->rows[y], static_cast<size_t>(raster->pitch)), 0) << "row " << y;
  }
}
