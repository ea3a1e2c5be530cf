/* What the tests of the display share: a screen with a window and its display, and rasters that free themselves. */
#pragma once

#include "display/context.h"
#include "display/present.h"
#include "pixel/convert.h"
#include "platform/portable/rig.h"
#include "support/streams.h"
#include "support/window.h"

#include "platform/win32.h"

#include <algorithm>
#include <cstring>

constexpr uint32_t Blue = 0x0000FF, Green = 0x00FF00, Red = 0xFF0000, White = 0xFFFFFF, Black = 0;

/** High enough for any picture; two monitors. A primary surface in system memory brings the GDI form. */
inline ScreenSetup Screen_With(int32_t bits, bool systemMemory = false, int32_t adapters = 2) {
  ScreenSetup setup = Screen_Of_Depth(bits);
  setup.primaryInSystemMemory = systemMemory;
  setup.adapters = adapters;
  setup.height = 1200;
  return setup;
}

enum DisplayForm { NoDisplay, GdiForm, DirectDrawForm };

inline DisplayForm Form_Of(const JdecDisplay* display) {
  if (!display) return NoDisplay;
  return display->useDirectDraw ? DirectDrawForm : GdiForm;
}

/** A screen, a window and the display opened in it. Fails the test when something is still alive at its end, or when anything
 *  was written beside the surface. */
struct TestDisplay : TestWindow {
  const int32_t aliveAtStart = Rig_Objects_Alive();
  std::unique_ptr<JdecDisplay, Releaser<Display_Destroy>> display;
  int32_t frames = 0;  ///< That reached the screen, told by the callback.

  using TestWindow::TestWindow;
  ~TestDisplay() {
    EXPECT_TRUE(!display || !display->offscreenSurface || Rig_Guards_Whole(display->offscreenSurface));
    display.reset();
    EXPECT_EQ(Rig_Objects_Alive(), aliveAtStart);
  }

  JdecDisplay* Open(int32_t width, int32_t height) {
    display.reset(Display_Create(handle, width, height));
    if (display) display->drawCallback = [](HWND, uintptr_t count) { ++*reinterpret_cast<int32_t*>(count); };
    if (display) display->drawCallbackUser = reinterpret_cast<uintptr_t>(&frames);
    return display.get();
  }
  void Show(const RasterPtr& raster, int32_t mdMode = 0) {
    Display_Present(display.get(), raster.get(), 0, 0, raster->width, raster->height, mdMode);
  }
  uint32_t Color(int32_t x, int32_t y) const { return Rig_Window_Color(handle, x, y); }

  /** The window's upper left corner holds exactly the raster. */
  void Expect_Shown(const RasterPtr& raster) const {
    int32_t width = 0, height = 0, pitch = 0;
    const uint8_t* pixels = Rig_Window_Pixels(handle, &width, &height, &pitch);
    ASSERT_TRUE(pixels && raster->width <= width && raster->height <= height);
    for (int32_t y = 0; y < raster->height; ++y) {
      ASSERT_EQ(std::memcmp(pixels + y * pitch, raster->rows[y], static_cast<size_t>(raster->pitch)), 0) << "row " << y;
    }
  }
};

inline std::vector<uint32_t> Colors(const TestDisplay& test, const RECT& rect) {
  std::vector<uint32_t> colors;
  for (LONG y = rect.top; y < rect.bottom; ++y) {
    for (LONG x = rect.left; x < rect.right; ++x) colors.push_back(test.Color(x, y));
  }
  return colors;
}

/** Checks that the window shows the text on black at that point, over the height of a line. Draws it there to compare. */
inline void Expect_Text(const TestDisplay& test, int32_t x, int32_t y, const std::string& text, int32_t height = 16,
                        uint32_t color = White) {
  const RECT line = {x, y, 320, y + height};
  const std::vector<uint32_t> shown = Colors(test, line);
  const HDC dc = GetDC(test.handle);
  const HFONT font = CreateFontA(height, height / 2, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                 CLIP_DEFAULT_PRECIS, PROOF_QUALITY, FIXED_PITCH | FF_MODERN, "Courier New");
  const HGDIOBJ old = SelectObject(dc, font);
  SelectObject(dc, GetStockObject(BLACK_BRUSH));
  Rectangle(dc, line.left, line.top, line.right, line.bottom);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(color >> 16, color >> 8 & 255, color & 255));
  TextOutA(dc, x, y, text.c_str(), static_cast<int>(text.size()));
  SelectObject(dc, old);
  DeleteObject(font);
  ReleaseDC(test.handle, dc);
  EXPECT_EQ(shown, Colors(test, line)) << text;
}

inline RasterPtr Noise_Raster(int32_t width, int32_t height, int32_t bits) {
  RasterPtr raster(Raster_New(width, height, bits));
  std::ranges::copy(Noise{7}.Some(static_cast<size_t>(height * raster->pitch)), raster->rows[height - 1]);
  return raster;
}

/** 32 bits, of one colour. */
inline RasterPtr Plain_Raster(int32_t width, int32_t height, uint32_t color) {
  RasterPtr raster(Raster_New(width, height, 32));
  for (int32_t y = 0; y < height; ++y) std::fill_n(reinterpret_cast<uint32_t*>(raster->rows[y]), width, color);
  return raster;
}
