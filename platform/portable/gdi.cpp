#include "platform/portable/gdi.h"

#include "platform/portable/machine.h"

#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr COLORREF White = 0xFFFFFF, Black = 0;

HBRUSH__ whiteBrush{{GdiKind::Brush, true}, true, White}, blackBrush{{GdiKind::Brush, true}, true, Black},
    nullBrush{{GdiKind::Brush, true}, false, Black};
HPEN__ whitePen{{GdiKind::Pen, true}, true, White}, blackPen{{GdiKind::Pen, true}, true, Black},
    nullPen{{GdiKind::Pen, true}, false, Black};
HFONT__ systemFont{{GdiKind::Font, true}, 16, 8};

/** Puts `next` into the place of `slot`; gives what was there. */
template <class Handle>
HGDIOBJ Exchange(Handle& slot, HGDIOBJ next) {
  HGDIOBJ before = slot;
  slot = static_cast<Handle>(next);
  return before;
}

/** Fills a rectangle given as the DC counts. */
void Fill_Rect(const DrawTarget& target, LONG left, LONG top, LONG right, LONG bottom, COLORREF color) {
  const POINT& origin = target.origin;
  Fill_Pixels(target.view, {left - origin.x, top - origin.y, right - origin.x, bottom - origin.y}, Swap_Color(color));
}

/** A bitmap as StretchDIBits is given it. */
struct DibSource {
  PixelView view;
  uint32_t colors[256];
};

/** Reads a bitmap's header. Gives false for what is not provided for. */
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

}  // namespace

uint32_t Swap_Color(uint32_t color) { return (color & 255) << 16 | (color & 0xFF00) | (color >> 16 & 255); }

HDC Dc_Make(HWND window, IDirectDrawSurface* surface) {
  HDC dc = new (std::nothrow) HDC__{};
  if (!dc) return nullptr;
  dc->window = window;
  dc->surface = surface;
  dc->stretchMode = COLORONCOLOR;
  dc->backgroundMode = OPAQUE;
  dc->font = &systemFont;
  dc->pen = &blackPen;
  dc->brush = &whiteBrush;
  Object_Made();
  return dc;
}

void Dc_End(HDC dc) {
  HWND window = dc->surface ? Surface_Window(dc->surface) : dc->window;
  if (dc->changed && Window_Find(window)) Desktop_Pixels_Changed(window);
  delete dc;
  Object_Ended();
}

DrawTarget Dc_Target(HDC dc) {
  if (dc->surface && !dc->surface->primary) return {dc->surface->view, {0, 0}};
  HWND window = dc->surface ? Surface_Window(dc->surface) : dc->window;
  if (!Window_Find(window) || !Window_Shows(window)) return {};
  return {Window_View(window), dc->surface ? Window_Origin(window) : POINT{0, 0}};
}

HDC GetDC(HWND window) {
  if (window && !Window_Find(window)) return nullptr;
  return Dc_Make(window, nullptr);
}

int ReleaseDC(HWND, HDC dc) {
  if (!dc) return 0;
  Dc_End(dc);
  return 1;
}

int GetDeviceCaps(HDC, int index) {
  if (index == BITSPIXEL) return machine.on ? machine.setup.bits : 24;
  return index == PLANES ? 1 : 0;
}

int SetStretchBltMode(HDC dc, int mode) {
  const int before = dc->stretchMode;
  dc->stretchMode = mode;
  return before;
}

int StretchDIBits(HDC dc, int x, int y, int width, int height, int srcX, int srcY, int srcWidth, int srcHeight, const void* bits,
                  const BITMAPINFO* info, UINT usage, DWORD operation) {
  if (!dc || !bits || !info || usage != DIB_RGB_COLORS || operation != SRCCOPY) return 0;
  for (const int number : {x, y, srcX, srcY})
    if (number < -PixelLimit / 2 || number > PixelLimit / 2) return 0;
  for (const int size : {width, height, srcWidth, srcHeight})
    if (size < 1 || size > PixelLimit / 2) return 0;
  DibSource source{};
  if (!Describe_Dib(bits, info, source)) return 0;
  const int32_t top = source.view.height - srcY - srcHeight;
  const RECT part{srcX, top, srcX + srcWidth, top + srcHeight};
  if (!Rect_Within(part, source.view.width, source.view.height)) return 0;
  const DrawTarget target = Dc_Target(dc);
  const LONG left = x - target.origin.x, upper = y - target.origin.y;
  Copy_Pixels({target.view, {left, upper, left + width, upper + height}, source.view, part, dc->stretchMode == HALFTONE});
  dc->changed = true;
  return srcHeight;
}

HPEN CreatePen(int style, int width, COLORREF color) {
  if (style != PS_SOLID || width < 0 || width > 1) return nullptr;
  HPEN pen = new (std::nothrow) HPEN__{{GdiKind::Pen, false}, true, color};
  if (pen) Object_Made();
  return pen;
}

HFONT CreateFontA(int height, int width, int, int, int, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, LPCSTR) {
  if (height < 1 || height > INT16_MAX || width < 0 || width > INT16_MAX) return nullptr;
  HFONT font = new (std::nothrow) HFONT__{{GdiKind::Font, false}, height, width};
  if (font) Object_Made();
  return font;
}

HGDIOBJ GetStockObject(int index) {
  switch (index) {
    case WHITE_BRUSH:
      return &whiteBrush;
    case BLACK_BRUSH:
      return &blackBrush;
    case NULL_BRUSH:
      return &nullBrush;
    case WHITE_PEN:
      return &whitePen;
    case BLACK_PEN:
      return &blackPen;
    case NULL_PEN:
      return &nullPen;
    default:
      return nullptr;
  }
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
  if (!dc || !object) return nullptr;
  switch (static_cast<GdiObject*>(object)->kind) {
    case GdiKind::Font:
      return Exchange(dc->font, object);
    case GdiKind::Pen:
      return Exchange(dc->pen, object);
    case GdiKind::Brush:
      return Exchange(dc->brush, object);
  }
  return nullptr;
}

BOOL DeleteObject(HGDIOBJ object) {
  if (!object) return FALSE;
  const GdiObject* head = static_cast<GdiObject*>(object);
  if (head->stock) return TRUE;
  if (head->kind == GdiKind::Font) {
    delete static_cast<HFONT>(object);
  } else {
    delete static_cast<HPEN>(object);  // brushes are stock objects, all of them
  }
  Object_Ended();
  return TRUE;
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
  const COLORREF before = dc->textColor;
  dc->textColor = color;
  return before;
}

int SetBkMode(HDC dc, int mode) {
  const int before = dc->backgroundMode;
  dc->backgroundMode = mode;
  return before;
}

BOOL Rectangle(HDC dc, int left, int top, int right, int bottom) {
  if (!dc) return FALSE;
  if (left > right) std::swap(left, right);
  if (top > bottom) std::swap(top, bottom);
  if (!Rect_Allowed({left, top, right, bottom})) return TRUE;
  const DrawTarget target = Dc_Target(dc);
  dc->changed = true;
  if (dc->brush->draws) Fill_Rect(target, left, top, right, bottom, dc->brush->color);
  if (!dc->pen->draws) return TRUE;
  Fill_Rect(target, left, top, right, top + 1, dc->pen->color);
  Fill_Rect(target, left, bottom - 1, right, bottom, dc->pen->color);
  Fill_Rect(target, left, top, left + 1, bottom, dc->pen->color);
  Fill_Rect(target, right - 1, top, right, bottom, dc->pen->color);
  return TRUE;
}

namespace {

/** What lies at a place of the DC: a pixel of its target, or for the screen's DC one of the uppermost window there. */
struct PixelPlace {
  uint8_t* at;
  ColorFormat format;
};

PixelPlace Find_Pixel(HDC dc, int x, int y) {
  if (dc->window || dc->surface) {
    const DrawTarget target = Dc_Target(dc);
    return {Pixel_At(target.view, x - target.origin.x, y - target.origin.y), target.view.format};
  }
  for (size_t i = allWindows.size(); i-- > 0;) {
    HWND window = allWindows[i];
    const POINT origin = Window_Origin(window);
    uint8_t* at = Window_Shows(window) ? Pixel_At(Window_View(window), x - origin.x, y - origin.y) : nullptr;
    if (at) return {at, Screen_Format()};
  }
  return {};
}

}  // namespace

COLORREF GetPixel(HDC dc, int x, int y) {
  if (!dc) return CLR_INVALID;
  const PixelPlace place = Find_Pixel(dc, x, y);
  if (!place.at) return CLR_INVALID;
  return Swap_Color(Color_From_Pixel(place.format, Load_Pixel(place.at, place.format.bits)));
}

COLORREF SetPixel(HDC dc, int x, int y, COLORREF color) {
  if (!dc || (!dc->window && !dc->surface)) return CLR_INVALID;
  const PixelPlace place = Find_Pixel(dc, x, y);
  if (!place.at) return CLR_INVALID;
  dc->changed = true;
  const uint32_t pixel = Pixel_From_Color(place.format, Swap_Color(color));
  Store_Pixel(place.at, place.format.bits, pixel);
  return Swap_Color(Color_From_Pixel(place.format, pixel));
}
