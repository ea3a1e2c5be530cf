// The DLL, loaded by name as its callers do, and a real window whose pixels are read from the screen.
#pragma once

#include "velarto.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

/** Gives an export; a missing one fails the test and gives null. */
template <typename Function>
Function Find_Export(HMODULE library, const char* name) {
  const auto found = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
  EXPECT_NE(found, nullptr) << name;
  return found;
}
#define FIND(name) decltype(&::name) name = Find_Export<decltype(&::name)>(module, #name)

/** The DLL to test: the one built, or one limited to lower kernel levels. */
inline const char* Library_Name() {
  const char* const name = std::getenv("VELARTO_DLL");
  return name ? name : "velarto.dll";
}

struct Library {
  HMODULE module = LoadLibraryA(Library_Name());
  FIND(JDEC_Init);
  FIND(JDEC_Exit);
  FIND(JDEC_New);
  FIND(JDEC_Free);
  FIND(JDEC_Draw_Init);
  FIND(JDEC_Receive_Data);
  FIND(JDEC_get_size);
  FIND(JDEC_get_decompressed_bitmap_ex2);
  FIND(JDEC_get_decompressed_bitmap_ex);
  FIND(JDEC_Access_SrcRect);
  FIND(JDEC_Compress_RGB888);
  FIND(JDEC_enable_MD);
  FIND(JDEC_set_MD_area);
  FIND(JDEC_set_MD_area_2);
  FIND(JDEC_show_rectangle);
  FIND(JDEC_set_ptz_bmp);
  FIND(JDEC_set_pos_bmp);
  FIND(JDEC_SetMotionSeachEnable);
  FIND(JDEC_SetMotionSeachArea);
  FIND(JDEC_SetMotionSeachString);

  Library() { JDEC_Init(); }
  ~Library() {
    JDEC_Exit();
    FreeLibrary(module);
  }
  Library(const Library&) = delete;
};

inline void Pump_Messages(DWORD milliseconds) {
  const DWORD start = GetTickCount();
  do {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    Sleep(10);
  } while (GetTickCount() - start < milliseconds);
}

/** A visible white window with that procedure: in its parent's client area, or on top of all others on the screen. */
inline HWND Make_Window(WNDPROC procedure, HWND parent, int left, int top, int width, int height) {
  WNDCLASSA type = {};
  type.lpfnWndProc = procedure;
  type.hInstance = GetModuleHandleA(nullptr);
  type.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
  type.lpszClassName = "velarto test";
  RegisterClassA(&type);
  const DWORD style = (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE;
  const HWND window = CreateWindowExA(parent ? 0 : WS_EX_TOPMOST, type.lpszClassName, "", style, left, top, width, height, parent,
                                      nullptr, type.hInstance, nullptr);
  UpdateWindow(window);
  return window;
}

/** A window with a client area of that size, at the screen's upper left. */
struct Window {
  HWND handle;

  Window(int width, int height) : handle(Make_Window(DefWindowProcA, nullptr, 40, 40, width, height)) { Pump_Messages(200); }
  ~Window() {
    DestroyWindow(handle);
    Pump_Messages(20);
  }
  Window(const Window&) = delete;
};

/** What the screen shows at the window's client area: B, G, R, 0, top row first. */
inline Bytes Read_Screen(HWND window) {
  RECT client;
  POINT origin = {0, 0};
  GetClientRect(window, &client);
  ClientToScreen(window, &origin);
  const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof info.bmiHeader, client.right, -client.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, client.right, client.bottom, screen, origin.x, origin.y, SRCCOPY);
  GdiFlush();
  const auto* const first = static_cast<const uint8_t*>(bits);
  Bytes pixels(first, first + static_cast<size_t>(client.right) * client.bottom * 4);
  for (size_t i = 3; i < pixels.size(); i += 4) pixels[i] = 0;
  SelectObject(memory, before);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return pixels;
}

inline int Screen_Depth() {
  const HDC screen = GetDC(nullptr);
  const int depth = GetDeviceCaps(screen, BITSPIXEL);
  ReleaseDC(nullptr, screen);
  return depth;
}

/** A value cut to that many bits, and widened again by repeating its upper ones. */
inline uint8_t Keep_Bits(uint8_t value, int bits) {
  const int level = value >> (8 - bits);
  return static_cast<uint8_t>(level << (8 - bits) | level >> (2 * bits - 8));
}

/** Bits of green on a screen of 16 bits: 5 or 6. Only a window tells: bitmaps may have another format. */
inline int Green_Bits() {
  static const int bits = [] {
    const HWND window = Make_Window(DefWindowProcA, nullptr, 0, 0, 8, 8);
    const HDC dc = GetDC(window);
    const COLORREF least = SetPixel(dc, 4, 4, RGB(0, 4, 0)) == CLR_INVALID ? CLR_INVALID : GetPixel(dc, 4, 4);
    ReleaseDC(window, dc);
    DestroyWindow(window);
    EXPECT_NE(least, CLR_INVALID);
    return least == 0 ? 5 : 6;
  }();
  return bits;
}

/** What a screen of this depth shows of pixels. With 16 bits the GDI form supplies only five bits of green. */
inline Bytes As_Shown(Bytes pixels, bool directDraw) {
  if (Screen_Depth() != 16) return pixels;
  const int green = Green_Bits();
  for (size_t i = 0; i < pixels.size(); i += 4) {
    pixels[i] = Keep_Bits(pixels[i], 5);
    pixels[i + 1] = Keep_Bits(directDraw ? pixels[i + 1] : Keep_Bits(pixels[i + 1], 5), green);
    pixels[i + 2] = Keep_Bits(pixels[i + 2], 5);
  }
  return pixels;
}

/** Colour of a palette index, as B, G, R, 0. */
inline Bytes Palette_Color(int index) {
  const auto limited = [](int value) { return static_cast<uint8_t>(std::clamp(value >> 16, 0, 255)); };
  const int cr = index % 4 * 32 - 48, cb = index / 4 % 4 * 32 - 48, y = index / 16 * 1220944 - 610472;
  return {limited(132201 * cb + y + 0x8012), limited(-53279 * cr - 25675 * cb + y + 0x8000), limited(104597 * cr + y + 0x8000),
          0};
}

/** What an 8-bit screen shows of pixels in colours of the palette: just these. Wine keeps entries of the screen's palette for
 *  itself, and a colour for which there is none becomes the nearest one; most must have theirs. */
inline Bytes On_Palette(Bytes pixels) {
  if (Screen_Depth() != 8) return pixels;
  PALETTEENTRY entries[256];
  const HDC screen = GetDC(nullptr);
  GetSystemPaletteEntries(screen, 0, 256, entries);
  ReleaseDC(nullptr, screen);
  const auto nearest = [&entries](const uint8_t* pixel) {
    const auto distance = [pixel](const PALETTEENTRY& entry) {
      const int red = entry.peRed - pixel[2], green = entry.peGreen - pixel[1], blue = entry.peBlue - pixel[0];
      return red * red + green * green + blue * blue;
    };
    const auto less = [&](const PALETTEENTRY& a, const PALETTEENTRY& b) { return distance(a) < distance(b); };
    const PALETTEENTRY& found = *std::min_element(entries, entries + 256, less);
    return std::array<uint8_t, 3>{found.peBlue, found.peGreen, found.peRed};
  };
  int there = 0;
  for (int i = 16; i < 240; ++i) {
    const Bytes color = Palette_Color(i);
    there += std::equal(color.begin(), color.begin() + 3, nearest(color.data()).begin());
  }
  EXPECT_GT(there, 160) << "of 224 colours";
  for (size_t i = 0; i < pixels.size(); i += 4) std::ranges::copy(nearest(&pixels[i]), &pixels[i]);
  return pixels;
}

inline Bytes Read_File(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

inline void Append(Bytes* bytes, const Bytes& more) { bytes->insert(bytes->end(), more.begin(), more.end()); }

struct HandleCounts {
  DWORD gdi, windows, kernel;
};

/** How many GDI objects and kernel handles the process has, and top-level windows this thread. Wine 8's own counts are always 0;
 *  but its GetObjectType takes an index for a handle, and kernel handles are small multiples of 4 everywhere. */
inline HandleCounts Count_Handles() {
  HandleCounts counts = {GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), 0, 0};
  if (counts.gdi == 0) {
    for (UINT_PTR index = 1; index < 0x4000; ++index) counts.gdi += GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0;
  }
  const auto count = [](HWND, LPARAM sum) CALLBACK -> BOOL { return ++*reinterpret_cast<DWORD*>(sum); };
  EnumThreadWindows(GetCurrentThreadId(), count, reinterpret_cast<LPARAM>(&counts.windows));
  for (UINT_PTR handle = 4; handle < 0x2000; handle += 4) {
    DWORD flags;
    counts.kernel += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0;
  }
  return counts;
}

/** Expects that the loads of the DLL since early have left nothing each; single objects may be Wine's, made when first needed.
 * Its comdlg32, which the DLL needs, leaves a kernel handle each time. */
inline void Expect_None_Left(const HandleCounts& early, DWORD loads) {
  const HandleCounts late = Count_Handles();
  EXPECT_LT(late.gdi, early.gdi + loads);
  EXPECT_LT(late.windows, early.windows + loads);
  EXPECT_LT(late.kernel, early.kernel + (1 + 1) * loads);
}
