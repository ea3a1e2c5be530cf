#include "overlay/color_key.h"

#include "overlay/motion_state.h"

#include "platform/win32.h"

namespace {

constexpr uint32_t NoPixel = 0xFFFFFFFF, BlackPixel = 0;

/** Writes pixel (0, 0) through a device context, so that the system converts the colour. Gives the colour that it had. */
COLORREF Swap_First_Pixel(IDirectDrawSurface* surface, COLORREF color) {
  HDC dc = nullptr;
  if (FAILED(IDirectDrawSurface_GetDC(surface, &dc))) return CLR_INVALID;
  const COLORREF before = GetPixel(dc, 0, 0);
  SetPixel(dc, 0, 0, color);
  IDirectDrawSurface_ReleaseDC(surface, dc);
  return before;
}

uint32_t Read_Pixel(const DDSURFACEDESC& locked, int32_t x, int32_t y) {
  const uint32_t bytes = locked.ddpfPixelFormat.dwRGBBitCount / 8;
  const auto* pixel = static_cast<const uint8_t*>(locked.lpSurface) + ptrdiff_t{y} * locked.lPitch + ptrdiff_t{x} * bytes;
  uint32_t value = 0;
  for (uint32_t i = 0; i < bytes && i < sizeof value; ++i) value |= uint32_t{pixel[i]} << (8 * i);
  return value;
}

void Take_Sample_Row(const DDSURFACEDESC& locked, int32_t keyRow) {
  const auto width = static_cast<int32_t>(locked.dwWidth);
  const int32_t row = static_cast<int32_t>(locked.dwHeight) - keyRow - 1;
  const int32_t second = width == 640 ? 2 : 1;  // At that width the template is stretched to twice its own.
  if (row < 0 || second >= width) return;
  mdColorFirst = Read_Pixel(locked, 0, row);
  mdColorSecond = Read_Pixel(locked, second, row);
  mdColor = mdColorFirst.load();
}

}  // namespace

HRESULT Set_Color_Key(IDirectDrawSurface* surface, COLORREF color, int32_t keyRow) {
  DDCOLORKEY key = {};
  key.dwColorSpaceLowValue = Sample_Colors(surface, color, keyRow);
  key.dwColorSpaceHighValue = key.dwColorSpaceLowValue;
  return IDirectDrawSurface_SetColorKey(surface, DDCKEY_SRCBLT, &key);
}

uint32_t Sample_Colors(IDirectDrawSurface* surface, COLORREF color, int32_t keyRow) {
  const COLORREF before = color != CLR_INVALID ? Swap_First_Pixel(surface, color) : CLR_INVALID;
  // Black is what callers ask for, and it is the same in all formats. Any other key would cover the video.
  if (color != CLR_INVALID && before == CLR_INVALID) return BlackPixel;

  DDSURFACEDESC locked = {};
  locked.dwSize = sizeof locked;
  HRESULT result;
  do {
    result = IDirectDrawSurface_Lock(surface, nullptr, &locked, 0, nullptr);
  } while (result == DDERR_WASSTILLDRAWING);

  uint32_t pixel = NoPixel;
  if (SUCCEEDED(result)) {
    if (locked.lpSurface) {
      pixel = Read_Pixel(locked, 0, 0);
      Take_Sample_Row(locked, keyRow);
    }
    IDirectDrawSurface_Unlock(surface, nullptr);
  }
  if (before != CLR_INVALID) Swap_First_Pixel(surface, before);
  return pixel;
}
