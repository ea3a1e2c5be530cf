#include "display/context.h"

#include "display/monitors.h"
#include "display/palette.h"
#include "overlay/lines.h"
#include "overlay/motion_area.h"
#include "pixel/arena.h"
#include "pixel/convert.h"
#include "platform/module.h"

#include <algorithm>

namespace {

constexpr size_t BitmapInfoSize = sizeof(BITMAPINFOHEADER) + PaletteSlots * sizeof(RGBQUAD);
constexpr DWORD RedMask555 = 0x7C00, RedMask565 = 0xF800;

constexpr char ddrawName[] = "ddraw.dll";

constexpr char depthCaption[] = "PLUGIN";
constexpr char depthMessage[] =
    "Unsupported VGA adapter color format,\n"
    "please use Control Panel to change the color format as:\n"
    "        8 bit ( 256 colors )\n"
    "        16 bit ( High Color)\n"
    "        24/32 bit ( True Color )\n";

int32_t Screen_Bits() {
  const HDC screen = GetDC(nullptr);
  if (!screen) return 0;
  const int32_t bits = GetDeviceCaps(screen, BITSPIXEL);
  ReleaseDC(nullptr, screen);
  return bits;
}

/** Makes the header of a picture with its bottom row first, in the window's depth. Null without memory. */
BITMAPINFO* Create_Bitmap_Info(HWND window, int32_t width, int32_t height) {
  auto* info = static_cast<BITMAPINFO*>(Arena_Alloc_Zeroed(BitmapInfoSize));
  if (!info) return nullptr;
  BITMAPINFOHEADER& header = info->bmiHeader;
  header.biSize = sizeof header;
  header.biWidth = width;
  header.biHeight = height;
  header.biCompression = BI_RGB;
  header.biClrUsed = PaletteSlots;
  header.biClrImportant = PaletteSlots;
  if (const HDC dc = GetDC(window)) {
    header.biPlanes = static_cast<WORD>(GetDeviceCaps(dc, PLANES));
    header.biBitCount = static_cast<WORD>(GetDeviceCaps(dc, BITSPIXEL));
    ReleaseDC(window, dc);
  }
  return info;
}

/** DirectDraw does badly when it shrinks a picture on a secondary monitor. */
bool GDI_Suits_Better(const JdecDisplay* display, int32_t width) {
  int32_t adapters = 0;
  Display_Count_Adapters(&adapters);
  RECT client = {};
  GetClientRect(display->window, &client);
  return adapters > 1 && client.right - client.left < width && Window_On_Secondary_Monitor(display) != 0;
}

/** The format of the primary surface, or -1 for 16 bits with unknown masks. */
int32_t Surface_Format(int32_t bits, DWORD redMask) {
  switch (bits) {
    case 8:
      return PixelPalette8;
    case 24:
      return PixelRgb24;
    case 32:
      return PixelRgb32;
    default:
      break;
  }
  if (redMask == RedMask555) return PixelRgb555;
  return redMask == RedMask565 ? int32_t{PixelRgb565} : -1;
}

using CreateDirectDraw = HRESULT(WINAPI*)(GUID*, IDirectDraw**, IUnknown*);
using EnumerateDevices = HRESULT(WINAPI*)(LPDDENUMCALLBACKA, LPVOID);
using EnumerateDevicesEx = HRESULT(WINAPI*)(LPDDENUMCALLBACKEXA, LPVOID, DWORD);

/** Loads DirectDraw, which not every system has, and makes its object. The library stays loaded as long as the display lives. */
bool Load_DirectDraw(JdecDisplay* display) {
  display->ddrawLibrary = LoadLibraryA(ddrawName);
  const auto create = Module_Function<CreateDirectDraw>(display->ddrawLibrary, "DirectDrawCreate");
  return create && SUCCEEDED(create(nullptr, &display->ddraw, nullptr));
}

/** Sets up DirectDraw, up to the window's clipper. False means the GDI form; what was made so far stays in the record. */
bool Open_DirectDraw(JdecDisplay* display) {
  if (!Load_DirectDraw(display)) return false;
  IDirectDraw_SetCooperativeLevel(display->ddraw, display->window, DDSCL_NORMAL);

  DDSURFACEDESC description = {};
  description.dwSize = sizeof description;
  description.dwFlags = DDSD_CAPS;
  description.ddsCaps.dwCaps = DDSCAPS_PRIMARYSURFACE;
  if (FAILED(IDirectDraw_CreateSurface(display->ddraw, &description, &display->primarySurface, nullptr))) return false;

  description = {};
  description.dwSize = sizeof description;
  if (FAILED(IDirectDrawSurface_GetSurfaceDesc(display->primarySurface, &description))) return false;
  if ((description.ddsCaps.dwCaps & DDSCAPS_SYSTEMMEMORY) != 0) return false;
  const int32_t format = Surface_Format(display->displayBits, description.ddpfPixelFormat.dwRBitMask);
  if (format < 0) return false;
  display->pixelFormat = format;
  Select_Lines(display->displayBits);

  return SUCCEEDED(IDirectDraw_CreateClipper(display->ddraw, 0, &display->clipper, nullptr)) &&
         SUCCEEDED(IDirectDrawClipper_SetHWnd(display->clipper, 0, display->window)) &&
         SUCCEEDED(IDirectDrawSurface_SetClipper(display->primarySurface, display->clipper));
}

HRESULT Create_Offscreen(JdecDisplay* display, int32_t width, int32_t height) {
  const SurfaceLayout layout = Surface_Layout(width, height);
  display->posHeight = layout.posHeight;
  display->posWidth = width;
  display->keyRow = layout.keyRow;

  DDSURFACEDESC description = {};
  description.dwSize = sizeof description;
  description.dwFlags = DDSD_CAPS | DDSD_HEIGHT | DDSD_WIDTH;
  description.dwWidth = static_cast<DWORD>(width);
  description.dwHeight = static_cast<DWORD>(layout.surfaceHeight);
  description.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN;
  return IDirectDraw_CreateSurface(display->ddraw, &description, &display->offscreenSurface, nullptr);
}

/** Makes what the DirectDraw form has besides its surfaces. False without memory or a lock. */
bool Create_Overlay_State(JdecDisplay* display, int32_t width, int32_t height) {
  Display_Build_Palette(display);
  display->motionCells = static_cast<uint8_t*>(Arena_Alloc_Zeroed(MotionColumns * MotionRows));
  if (!display->motionCells) return false;
  Load_Template_Bitmap(display->offscreenSurface, width, height, display->displayBits, display->keyRow);
  display->lock = CreateMutexA(nullptr, FALSE, nullptr);
  return display->lock != nullptr;
}

/** Chooses the form. False if the display can't be made at all. */
bool Choose_Form(JdecDisplay* display, int32_t width, int32_t height) {
  if (GDI_Suits_Better(display, width) || !Open_DirectDraw(display)) {
    Display_Use_GDI(display);
    return true;
  }
  if (FAILED(Create_Offscreen(display, width, height))) return false;
  if (!display->offscreenSurface) {
    Display_Use_GDI(display);
    return true;
  }
  return Create_Overlay_State(display, width, height);
}

BOOL CALLBACK Count_Attached_Device(GUID*, LPSTR, LPSTR, LPVOID count, HMONITOR) {
  ++*static_cast<int32_t*>(count);
  return TRUE;
}

BOOL CALLBACK Count_First_Device(GUID*, LPSTR, LPSTR, LPVOID count) {
  ++*static_cast<int32_t*>(count);
  return FALSE;
}

/** A system without the extended enumeration counts as having one device. */
HRESULT Count_Devices(HMODULE library, int32_t* count) {
  if (const auto enumerate = Module_Function<EnumerateDevicesEx>(library, "DirectDrawEnumerateExA"))
    return enumerate(Count_Attached_Device, count, DDENUM_ATTACHEDSECONDARYDEVICES);
  const auto enumerate = Module_Function<EnumerateDevices>(library, "DirectDrawEnumerateA");
  return enumerate ? enumerate(Count_First_Device, count) : E_FAIL;
}

}  // namespace

SurfaceLayout Surface_Layout(int32_t width, int32_t height) {
  if (width != 640) return {height, height + PtzStripRows, 3 * height + 138, height, 2 * height};
  if (height == 480) return {480, 480 + PtzStripRows, 1596, 480, 960};
  return {240, 240 + PtzStripRows, 858, std::clamp(480 - height, 0, height), 480};
}

SIZE Surface_Size(IDirectDrawSurface* surface) {
  DDSURFACEDESC description = {};
  description.dwSize = sizeof description;
  description.dwFlags = DDSD_HEIGHT | DDSD_WIDTH;
  if (FAILED(IDirectDrawSurface_GetSurfaceDesc(surface, &description))) return {};
  return {static_cast<LONG>(description.dwWidth), static_cast<LONG>(description.dwHeight)};
}

JdecDisplay* Display_Create(HWND window, int32_t width, int32_t height) {
  auto* display = static_cast<JdecDisplay*>(Arena_Alloc_Zeroed(sizeof(JdecDisplay)));
  if (!display) return nullptr;
  display->window = window;
  display->useDirectDraw = 1;
  display->fpsTick = GetTickCount();
  display->fpsCount = -1;
  display->displayBits = Screen_Bits();
  const int32_t bits = display->displayBits;
  if (bits != 8 && bits != 16 && bits != 24 && bits != 32) {
    MessageBoxA(nullptr, depthMessage, depthCaption, MB_OK);
    Display_Destroy(display);
    return nullptr;
  }
  display->bitmapInfo = Create_Bitmap_Info(window, width, height);
  if (!display->bitmapInfo || !Choose_Form(display, width, height)) {
    Display_Destroy(display);
    return nullptr;
  }
  return display;
}

void Display_Destroy(JdecDisplay* display) {
  if (!display) return;
  if (display->ddraw) {
    if (display->primarySurface) IDirectDrawSurface_Release(display->primarySurface);
    if (display->offscreenSurface) IDirectDrawSurface_Release(display->offscreenSurface);
    if (display->clipper) IDirectDrawClipper_Release(display->clipper);
    if (display->ddPalette) IDirectDrawPalette_Release(display->ddPalette);
    IDirectDraw_Release(display->ddraw);
  }
  if (display->ddrawLibrary) FreeLibrary(display->ddrawLibrary);
  Display_Free_Palette(display);
  if (display->lock) CloseHandle(display->lock);
  Arena_Free(display->bitmapInfo);
  Arena_Free(display->motionCells);
  Arena_Free(display);
}

JdecDisplay* Display_Use_GDI(JdecDisplay* display) {
  display->useDirectDraw = 0;
  switch (Screen_Bits()) {
    case 8:
      display->pixelFormat = PixelPalette8;
      break;
    case 16:
      display->pixelFormat = PixelRgb555;
      break;
    case 24:
      display->pixelFormat = PixelRgb24;
      break;
    case 32:
      display->pixelFormat = PixelRgb32;
      break;
    default:
      break;
  }
  Display_Build_Palette(display);
  return display;
}

HRESULT Display_Count_Adapters(int32_t* count) {
  const HMODULE library = LoadLibraryA(ddrawName);
  if (!library) return E_FAIL;
  const HRESULT result = Count_Devices(library, count);
  FreeLibrary(library);
  return result;
}
