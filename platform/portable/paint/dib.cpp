/* GDI bitmaps. */
#include "platform/portable/paint/gdi.h"
#include "platform/portable/paint/objects.h"
#include "platform/portable/system/seam.h"

#include <cstring>
#include <new>

namespace {

/** Whether both rectangles have a size, within what copies can handle. */
bool Copy_Allowed(const int (&places)[4], const int (&sizes)[4]) {
  for (const int place : places)
    if (place < -PixelLimit / 2 || place > PixelLimit / 2) return false;
  for (const int size : sizes)
    if (size < 1 || size > PixelLimit / 2) return false;
  return true;
}

/** A rectangle of the DC as one of the canvas's view. */
RECT Area_On(const Canvas& canvas, int x, int y, int width, int height) {
  const LONG left = x - canvas.origin.x, top = y - canvas.origin.y;
  return {left, top, left + width, top + height};
}

PixelView Bitmap_View(HBITMAP bitmap) {
  return {reinterpret_cast<uint8_t*>(bitmap->colors.data()),
          bitmap->width,
          bitmap->height,
          ptrdiff_t{4} * bitmap->width,
          {32, 0, 0, 0, nullptr}};
}

}  // namespace

bool Describe_Dib(const void* bits, const BITMAPINFO* info, DibSource& source) {
  const BITMAPINFOHEADER& header = info->bmiHeader;
  const int32_t depth = header.biBitCount;
  const bool knownDepth = depth == 8 || depth == 16 || depth == 24 || depth == 32;
  const bool masked = header.biCompression == BI_BITFIELDS;
  if (!knownDepth || header.biWidth < 1 || header.biHeight < 1 || header.biWidth > PixelLimit || header.biHeight > PixelLimit)
    return false;
  if (header.biCompression != BI_RGB && !(masked && depth == 16)) return false;
  uint32_t masks[3] = {0x7C00, 0x3E0, 0x1F};
  if (masked) std::memcpy(masks, info->bmiColors, sizeof masks);
  const DWORD count = header.biClrUsed == 0 || header.biClrUsed > 256 ? 256 : header.biClrUsed;
  for (DWORD i = 0; depth == 8 && i < count; ++i) {
    const RGBQUAD& quad = info->bmiColors[i];
    source.colors[i] = static_cast<uint32_t>(quad.rgbRed << 16 | quad.rgbGreen << 8 | quad.rgbBlue);
  }
  const ptrdiff_t pitch = (static_cast<ptrdiff_t>(header.biWidth) * depth / 8 + 3) & ~static_cast<ptrdiff_t>(3);
  auto* top = static_cast<uint8_t*>(const_cast<void*>(bits)) + pitch * (header.biHeight - 1);  // only read from
  source.view = {top, header.biWidth, header.biHeight, -pitch, {depth, masks[0], masks[1], masks[2], source.colors}};
  return true;
}

int StretchDIBits(HDC dc, int x, int y, int width, int height, int srcX, int srcY, int srcWidth, int srcHeight, const void* bits,
                  const BITMAPINFO* info, UINT usage, DWORD operation) {
  if (!dc || !bits || !info || usage != DIB_RGB_COLORS || operation != SRCCOPY) return 0;
  if (!Copy_Allowed({x, y, srcX, srcY}, {width, height, srcWidth, srcHeight})) return 0;
  DibSource source{};
  if (!Describe_Dib(bits, info, source)) return 0;
  const int32_t top = source.view.height - srcY - srcHeight;
  const RECT part{srcX, top, srcX + srcWidth, top + srcHeight};
  if (!Rect_Within(part, source.view.width, source.view.height)) return 0;
  uint32_t reachable[256];
  for (Canvas& canvas : Dc_Canvases(dc)) {
    if (canvas.view.format.bits == 8 && dc->window) {
      Dc_Reachable_Colors(dc, reachable);
      canvas.view.format.colors = reachable;
    }
    Copy_Pixels({canvas.view, Area_On(canvas, x, y, width, height), source.view, part, dc->stretchMode == HALFTONE});
  }
  dc->changed = true;
  return srcHeight;
}

BOOL StretchBlt(HDC dc, int x, int y, int width, int height, HDC source, int srcX, int srcY, int srcWidth, int srcHeight,
                DWORD operation) {
  if (Step_Fails(RigStep::StretchBlt)) return FALSE;
  if (!dc || !source || !source->bitmap || operation != SRCCOPY) return FALSE;
  if (!Copy_Allowed({x, y, srcX, srcY}, {width, height, srcWidth, srcHeight})) return FALSE;
  const RECT part{srcX, srcY, srcX + srcWidth, srcY + srcHeight};
  if (!Rect_Within(part, source->bitmap->width, source->bitmap->height)) return FALSE;
  for (const Canvas& canvas : Dc_Canvases(dc)) {
    const RECT area = Area_On(canvas, x, y, width, height);
    Copy_Pixels({canvas.view, area, Bitmap_View(source->bitmap), part, dc->stretchMode == HALFTONE});
  }
  dc->changed = true;
  return TRUE;
}

HBITMAP CreateDIBitmap(HDC, const BITMAPINFOHEADER* header, DWORD flags, const void* bits, const BITMAPINFO* info, UINT usage) {
  DibSource source{};
  if (!header || !bits || !info || flags != CBM_INIT || usage != DIB_RGB_COLORS || !Describe_Dib(bits, info, source))
    return nullptr;
  const int32_t width = source.view.width, height = source.view.height;
  HBITMAP bitmap = new (std::nothrow) HBITMAP__{{GdiKind::Bitmap, false}, width, height, {}};
  if (!bitmap) return nullptr;
  bitmap->colors.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
  Copy_Pixels({Bitmap_View(bitmap), {0, 0, width, height}, source.view, {0, 0, width, height}, false});
  Object_Made();
  return bitmap;
}

int GetObjectA(HGDIOBJ object, int size, void* out) {
  if (!object || static_cast<GdiObject*>(object)->kind != GdiKind::Bitmap || size != sizeof(BITMAP)) return 0;
  const auto* bitmap = static_cast<HBITMAP>(object);
  *static_cast<BITMAP*>(out) = {0, bitmap->width, bitmap->height, 4 * bitmap->width, 1, 32, nullptr};
  return size;
}

HDC CreateCompatibleDC(HDC) {
  static HBITMAP__ onePixel{{GdiKind::Bitmap, true}, 1, 1, {0}};
  if (Step_Fails(RigStep::CreateCompatibleDC)) return nullptr;
  HDC dc = Dc_Make(nullptr, nullptr);
  if (dc) dc->bitmap = &onePixel;
  return dc;
}

BOOL DeleteDC(HDC dc) {
  if (!dc) return FALSE;
  Dc_End(dc);
  return TRUE;
}
