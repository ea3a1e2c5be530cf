// Presentation of a raster in a window of the portable screen: both forms of the display, each depth, at the picture's own size,
// at half and at twice that.
#include "display/present.h"
#include "pixel/arena.h"
#include "platform/portable/desktop.h"

#include "platform/win32.h"

#include <benchmark/benchmark.h>
#include <cmath>

namespace {

/** Colours like those of photographs: slopes with a little noise. On a screen of 8 bits they are palette indices. */
JdecRaster* Natural_Raster(int32_t width, int32_t height, int32_t bits) {
  JdecRaster* const raster = Raster_New(width, height, bits);
  uint32_t state = 1;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t i = 0; i < raster->pitch; ++i) {
      state = state * 1664525 + 1013904223;
      const double slope = std::sin(i / 97.0) * std::cos(y / 61.0 + i % 3);
      raster->rows[y][i] = static_cast<uint8_t>(128 + 104 * slope + (state >> 24) % 8);
    }
  }
  return raster;
}

/** Presents one picture of that size repeatedly; the window is scale / 2 times as large. */
void Present(benchmark::State& state, int32_t bits, bool gdi, int32_t width, int32_t height, int32_t scale) {
  ScreenSetup setup = Screen_Of_Depth(bits);
  setup.width = setup.height = 4096;
  setup.primaryInSystemMemory = gdi;
  Screen_Set_Up(setup);
  WNDCLASSA type = {};
  type.lpfnWndProc = DefWindowProcA;
  type.lpszClassName = "velarto-bench";
  RegisterClassA(&type);
  const HWND window = CreateWindowExA(0, type.lpszClassName, "", WS_POPUP | WS_VISIBLE, 0, 0, width * scale / 2,
                                      height * scale / 2, nullptr, nullptr, nullptr, nullptr);
  JdecDisplay* const display = Display_Create(window, width, height);
  JdecRaster* const raster = Natural_Raster(width, height, setup.bits);
  const auto mdMode = static_cast<int32_t>(state.range(0));
  for (auto _ : state) {
    Display_Present(display, raster, 0, 0, width, height, mdMode);
    benchmark::ClobberMemory();
  }
  Arena_Free(raster);
  Display_Destroy(display);
  DestroyWindow(window);
  Screen_Remove();
}

void Register_All() {
  constexpr const char* scales[] = {"", "half", "same", "", "double"};
  for (const auto& [width, height] : {SIZE{640, 480}, {1920, 1072}}) {
    for (const bool gdi : {false, true}) {
      for (const int32_t bits : {32, 24, 16, 8}) {
        for (const int32_t scale : {2, 4, 1}) {
          const std::string name =
              "Present/" + std::to_string(height) + (gdi ? "/gdi/" : "/directdraw/") + std::to_string(bits) + "/" + scales[scale];
          const auto run = [=](benchmark::State& state) { Present(state, bits, gdi, width, height, scale); };
          auto* const made = benchmark::RegisterBenchmark(name.c_str(), run)->ArgName("layer")->Arg(0);
          if (!gdi && scale == 2) made->Arg(1);  // With the motion-area layer over it, which a colour key makes transparent.
          made->Unit(benchmark::kMicrosecond);
        }
      }
    }
  }
}

const bool registered = (Register_All(), true);

}  // namespace
