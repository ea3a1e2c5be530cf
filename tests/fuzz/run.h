/* The surroundings of a run: kernels of a level, a screen with a window, steps that fail, and what must hold afterwards. */
#pragma once

#include "fuzz/input.h"
#include "kernels/cpu.h"
#include "platform/portable/rig.h"
#include "velarto.h"

#include "platform/win32.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

[[noreturn]] inline void Finding(const char* file, int line, const char* condition) {
  std::fprintf(stderr, "%s:%d: false: %s\n", file, line, condition);
  std::abort();
}
#define REQUIRE(condition) ((condition) ? (void)0 : Finding(__FILE__, __LINE__, #condition))

inline uint32_t Draw_Level(Input* input) { return kernelLevels[input->Byte() % std::size(kernelLevels)].mask & Cpu_Levels(); }

/** Lets one allocation fail, or all from one on, or none. */
inline void Let_Memory_Fail(uint8_t drawn) {
  if (drawn & 1) Rig_Fail(RigStep::Memory, drawn >> 2, drawn & 2 ? 1 : INT32_MAX);
}

/** A run of the library with kernels of that level; to be constructed first. When it ends, no object may be left alive. */
struct Run {
  const bool started = JDEC_Init() != 0;
  const int32_t alive = Rig_Objects_Alive();

  explicit Run(uint32_t mask) {
    kernels = Kernels_Select(mask);
    Rig_Set_Tick(1000);
    JDEC_enable_MD(nullptr, 0);
    JDEC_set_MD_color(0);
  }
  ~Run() {
    Rig_Fail_Nothing();
    REQUIRE(started && Rig_Objects_Alive() == alive);
    JDEC_Exit();
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
};

/** A screen of some depth and form, and a window of some size on it. */
struct FuzzWindow {
  HWND handle = nullptr;

  explicit FuzzWindow(Input* input) {
    constexpr int32_t depths[] = {8, 15, 16, 24, 32, 32, 8, 4};
    const uint8_t drawn = input->Byte();
    ScreenSetup setup = Screen_Of_Depth(depths[drawn % 8]);
    setup.width = 360, setup.height = 280;
    setup.adapters = drawn & 8 ? 2 : 1;
    setup.primaryInSystemMemory = drawn & 16;
    Screen_Set_Up(setup);
    WNDCLASSA type = {};
    type.lpfnWndProc = DefWindowProcA;
    type.lpszClassName = "velarto-fuzz";
    RegisterClassA(&type);
    const int32_t width = drawn & 32 ? 320 : input->Byte() + 1, height = drawn & 32 ? 240 : input->Byte() + 1;
    handle = Make(width, height);
  }
  ~FuzzWindow() {
    DestroyWindow(handle);
    Screen_Remove();
  }
  static HWND Make(int32_t width, int32_t height) {
    return CreateWindowExA(0, "velarto-fuzz", "", WS_POPUP | WS_VISIBLE, 40, 30, width, height, nullptr, nullptr, nullptr,
                           nullptr);
  }
  FuzzWindow(const FuzzWindow&) = delete;
  FuzzWindow& operator=(const FuzzWindow&) = delete;

  /** Makes another window, which the caller destroys. */
  HWND Another() const { return Make(101, 64); }

  Bytes Pixels() const {
    int32_t width = 0, height = 0, pitch = 0;
    const uint8_t* const pixels = Rig_Window_Pixels(handle, &width, &height, &pitch);
    return pixels ? Bytes(pixels, pixels + (ptrdiff_t)pitch * height) : Bytes();
  }
};

/** Gives the input to `run` at the level that it selects. If its size is a multiple of `oneIn`, the plain kernels must give the
 *  same result. */
inline void Compare_With_Plain(const uint8_t* data, size_t size, size_t oneIn, Bytes (*run)(uint32_t mask, Input input)) {
  Input input = {data, size};
  const uint32_t mask = Draw_Level(&input);
  const Bytes result = run(mask, input);
  if (mask != KernelPlain && size % oneIn == 0) REQUIRE(result == run(KernelPlain, input));
}

/** The current picture as a BMP file, in a buffer of exactly its size. */
inline Bytes Picture_Of(JdecDecoder* decoder) {
  uint8_t none = 0;
  Bytes bmp((size_t)JDEC_get_decompressed_bitmap_ex2(decoder, &none, 1));
  if (!bmp.empty()) JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), (int32_t)bmp.size());
  return bmp;
}

inline void Push(JdecDecoder* decoder, const Bytes& bytes, int32_t* status = nullptr) {
  JDEC_Receive_Data(decoder, (int32_t)bytes.size(), bytes.data(), status);
}
