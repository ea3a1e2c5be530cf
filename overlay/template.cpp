/* The template bitmap of the motion-area layer, and how it is copied to a surface. */
#include "overlay/bitmap_dc.h"
#include "overlay/color_key.h"
#include "overlay/motion_area.h"
#include "platform/module.h"
#include "resources/resources.h"

#include <algorithm>

namespace {

/* Width of the template, and the rows of its grid and of its strips. */
constexpr int32_t TemplateWidth = 320, GridTop = 240, GridRows = 240, StripsTop = 480, StripsRows = 18;

bool Made_For(int32_t width, int32_t height) {
  return (width == 320 && height == 240) || (width == 640 && (height == 240 || height == 480));
}

/** Copies grid and strips to their rows on the surface, twice as wide for pictures 640 wide, as the cells are. */
HRESULT Copy_By_Parts(IDirectDrawSurface* surface, HBITMAP bitmap, int32_t width, int32_t height) {
  IDirectDrawSurface_Restore(surface);
  const BitmapDc source(bitmap);
  if (!source.dc) OutputDebugStringA("createcompatible dc failed\n");
  HDC dc = nullptr;
  const HRESULT result = IDirectDrawSurface_GetDC(surface, &dc);
  if (FAILED(result)) return result;
  const SurfaceLayout layout = Surface_Layout(width, height);
  const int32_t across = width == 640 ? 2 * TemplateWidth : TemplateWidth, rows = std::min(layout.layerRows, GridRows);
  StretchBlt(dc, 0, height, across, rows, source.dc, 0, GridTop, TemplateWidth, rows, SRCCOPY);
  for (int32_t x = 0; x < width; x += across) {
    StretchBlt(dc, x, layout.templateRow, across, StripsRows, source.dc, 0, StripsTop, TemplateWidth, StripsRows, SRCCOPY);
  }
  IDirectDrawSurface_ReleaseDC(surface, dc);
  return result;
}

}  // namespace

HRESULT Copy_Bitmap_To_Surface(IDirectDrawSurface* surface, HBITMAP bitmap, int32_t sourceX, int32_t sourceY, int32_t sourceWidth,
                               int32_t sourceHeight, int32_t keyRow) {
  if (!bitmap || !surface) return E_FAIL;
  IDirectDrawSurface_Restore(surface);
  const BitmapDc source(bitmap);
  if (!source.dc) OutputDebugStringA("createcompatible dc failed\n");
  BITMAP size = {};
  GetObjectA(bitmap, sizeof size, &size);
  if (sourceWidth == 0) sourceWidth = size.bmWidth;
  if (sourceHeight == 0) sourceHeight = size.bmHeight;
  const SIZE target = Surface_Size(surface);
  HDC dc = nullptr;
  const HRESULT result = IDirectDrawSurface_GetDC(surface, &dc);
  if (FAILED(result)) return result;
  StretchBlt(dc, 0, 0, target.cx, target.cy - keyRow, source.dc, sourceX, sourceY, sourceWidth, sourceHeight, SRCCOPY);
  IDirectDrawSurface_ReleaseDC(surface, dc);
  return result;
}

HRESULT Load_Template_Bitmap(IDirectDrawSurface* surface, int32_t width, int32_t height, int32_t /*displayBits*/,
                             int32_t keyRow) {
  if (!surface) return E_FAIL;
  IDirectDrawSurface_Restore(surface);
  const HBITMAP bitmap = LoadBitmapA(Module_Handle(), MAKEINTRESOURCEA(TemplateBitmapId));
  if (!bitmap) {
    OutputDebugStringA("bitmap handle is null\n");
    return E_FAIL;
  }
  const HRESULT result = Made_For(width, height) ? Copy_Bitmap_To_Surface(surface, bitmap, 0, 0, 0, 0, keyRow)
                                                 : Copy_By_Parts(surface, bitmap, width, height);
  if (FAILED(result)) OutputDebugStringA("ddcopybitmap failed\n");
  DeleteObject(bitmap);
  Set_Color_Key(surface, RGB(0, 0, 0), keyRow);
  return result;
}
