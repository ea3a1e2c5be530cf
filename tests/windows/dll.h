// A decoder of the DLL, and what its window should show. VELARTO_FORM (ddraw or gdi) names the form that this screen must
// lead to.
#pragma once

#include "windows/library.h"

inline bool Form_Is_DirectDraw() {
  const char* const form = std::getenv("VELARTO_FORM");
  EXPECT_NE(form, nullptr) << "VELARTO_FORM is not set";
  return form && std::string(form) == "ddraw";
}

struct DllTest : testing::Test {
  Library dll;
  JdecDecoder* decoder = nullptr;
  const bool directDraw = Form_Is_DirectDraw();

  void Open(int width, int height, HWND window) {
    decoder = dll.JDEC_New(width, height);
    ASSERT_NE(decoder, nullptr);
    ASSERT_EQ(dll.JDEC_Draw_Init(decoder, window), 1);
  }
  void Push(const Bytes& frame) {
    int32_t status = 0;
    ASSERT_EQ(dll.JDEC_Receive_Data(decoder, static_cast<int32_t>(frame.size()), frame.data(), &status),
              static_cast<int32_t>(frame.size()));
  }
  void TearDown() override { dll.JDEC_Free(decoder); }

  /** The decoder's picture as the screen should show it at 1:1, top row first. */
  Bytes Expected() {
    int width = 0, height = 0;
    dll.JDEC_get_size(decoder, &width, &height);
    if (Screen_Depth() == 8) return Expected_Of_Indices(width, height);
    Bytes bmp(static_cast<size_t>(width) * height * 3 + 54), pixels;
    EXPECT_EQ(dll.JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), static_cast<int32_t>(bmp.size())),
              static_cast<int32_t>(bmp.size()));
    for (int y = height - 1; y >= 0; --y) {
      for (int x = 0; x < width; ++x) {
        const uint8_t* const pixel = &bmp[54 + (static_cast<size_t>(y) * width + x) * 3];
        pixels.insert(pixels.end(), {pixel[0], pixel[1], pixel[2], 0});
      }
    }
    return As_Shown(pixels, directDraw);
  }

  /** The raster's indices in the colours of the palette. */
  Bytes Expected_Of_Indices(int width, int height) {
    int32_t format = -1;
    const uint8_t* const indices = dll.JDEC_get_decompressed_bitmap_ex(decoder, &format, nullptr);
    EXPECT_EQ(format, 0);
    Bytes pixels;
    for (int y = height - 1; y >= 0; --y) {
      for (int x = 0; x < width; ++x) Append(&pixels, Palette_Color(indices[y * width + x]));
    }
    return pixels;
  }

  /** Waits until the window shows the decoder's picture, repainting now and then; gives how many pixels still differ. */
  int Differing_Pixels(HWND window) { return Differing_Pixels(window, Expected()); }
  int Differing_Pixels(HWND window, const Bytes& expected) {
    int differing = 0;
    for (int attempt = 0; attempt < 20; ++attempt) {
      Pump_Messages(100);
      const Bytes shown = Read_Screen(window);
      if (shown.size() != expected.size()) return -1;
      differing = 0;
      const Bytes reachable = On_Palette(expected);
      for (size_t i = 0; i < shown.size(); i += 4) differing += !std::equal(&shown[i], &shown[i] + 3, &reachable[i]);
      if (differing == 0) return 0;
      Repaint(window);
    }
    return differing;
  }
  void Repaint(HWND window) {
    RECT client;
    GetClientRect(window, &client);
    const int32_t rect[4] = {client.left, client.top, client.right, client.bottom};
    EXPECT_NE(dll.JDEC_Access_SrcRect(decoder, rect), nullptr);
  }
};
