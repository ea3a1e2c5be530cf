#include "platform/portable/paint/gdi.h"

#include "platform/portable/paint/objects.h"
#include "platform/portable/paint/screen.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window.h"

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
HPALETTE__ systemPalette{{GdiKind::Palette, true}, {}, {}, {}};

/** Sets the slot; gives what was there. */
template <class Handle>
HGDIOBJ Exchange(Handle& slot, HGDIOBJ next) {
  HGDIOBJ before = slot;
  slot = static_cast<Handle>(next);
  return before;
}

/** Fills a rectangle, in the DC's coordinates. */
void Fill_Rect(const Canvas& canvas, LONG left, LONG top, LONG right, LONG bottom, COLORREF color) {
  const POINT& origin = canvas.origin;
  Fill_Pixels(canvas.view, {left - origin.x, top - origin.y, right - origin.x, bottom - origin.y}, Swap_Color(color));
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
  dc->palette = &systemPalette;
  Object_Made();
  return dc;
}

void Dc_End(HDC dc) {
  if (dc->changed && dc->surface && dc->surface->primary) All_Canvases_Changed();
  if (dc->changed && dc->window) Canvas_Changed(dc->window);
  delete dc;
  Object_Ended();
}

/** What the DC would draw on without a clip. */
static std::vector<Canvas> Whole_Canvases(HDC dc) {
  if (dc->surface && dc->surface->primary) return All_Canvases();
  if (dc->surface) return {{dc->surface->view, {0, 0}}};
  if (dc->window) return {{Canvas_Of(dc->window).view, {0, 0}}};
  return {};
}

/** The part of a canvas in a rectangle of the DC. */
static Canvas Canvas_Part(Canvas canvas, RECT part) {
  OffsetRect(&part, -canvas.origin.x, -canvas.origin.y);
  part = Rect_Common(part, {0, 0, canvas.view.width, canvas.view.height});
  if (Rect_Is_Empty(part)) return {};
  canvas.view.pixels = Pixel_At(canvas.view, part.left, part.top);
  canvas.view.width = part.right - part.left;
  canvas.view.height = part.bottom - part.top;
  canvas.origin = {canvas.origin.x + part.left, canvas.origin.y + part.top};
  return canvas;
}

std::vector<Canvas> Dc_Canvases(HDC dc) {
  std::vector<Canvas> canvases = Whole_Canvases(dc);
  if (!dc->clipped) return canvases;
  for (Canvas& canvas : canvases) canvas = Canvas_Part(canvas, dc->clip);
  return canvases;
}

HDC GetDC(HWND window) {
  if (window && !IsWindow(window)) return nullptr;
  return Dc_Make(window, nullptr);
}

int ReleaseDC(HWND, HDC dc) {
  if (!dc) return 0;
  Dc_End(dc);
  return 1;
}

int GetDeviceCaps(HDC, int index) {
  if (index == BITSPIXEL) return screenState.on ? screenState.setup.bits : 24;
  return index == PLANES ? 1 : 0;
}

int SetStretchBltMode(HDC dc, int mode) {
  const int before = dc->stretchMode;
  dc->stretchMode = mode;
  return before;
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
    case GdiKind::Bitmap:
      return dc->window || dc->surface ? nullptr : Exchange(dc->bitmap, object);
    case GdiKind::Palette:
      break;  // SelectPalette
  }
  return nullptr;
}

BOOL DeleteObject(HGDIOBJ object) {
  if (!object) return FALSE;
  const GdiObject* ended = static_cast<GdiObject*>(object);
  if (ended->stock) return TRUE;
  switch (ended->kind) {
    case GdiKind::Font:
      delete static_cast<HFONT>(object);
      break;
    case GdiKind::Bitmap:
      delete static_cast<HBITMAP>(object);
      break;
    case GdiKind::Palette:
      delete static_cast<HPALETTE>(object);
      break;
    default:
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

int IntersectClipRect(HDC dc, int left, int top, int right, int bottom) {
  const RECT rect = {left, top, right, bottom};
  dc->clip = dc->clipped ? Rect_Common(dc->clip, rect) : rect;
  dc->clipped = true;
  return Rect_Is_Empty(dc->clip) ? NULLREGION : SIMPLEREGION;
}

int SelectClipRgn(HDC dc, HRGN) {
  dc->clipped = false;
  return SIMPLEREGION;
}

BOOL Rectangle(HDC dc, int left, int top, int right, int bottom) {
  if (!dc) return FALSE;
  if (left > right) std::swap(left, right);
  if (top > bottom) std::swap(top, bottom);
  if (!Rect_Allowed({left, top, right, bottom})) return TRUE;
  dc->changed = true;
  for (const Canvas& canvas : Dc_Canvases(dc)) {
    if (dc->brush->draws) Fill_Rect(canvas, left, top, right, bottom, dc->brush->color);
    if (!dc->pen->draws) continue;
    Fill_Rect(canvas, left, top, right, top + 1, dc->pen->color);
    Fill_Rect(canvas, left, bottom - 1, right, bottom, dc->pen->color);
    Fill_Rect(canvas, left, top, left + 1, bottom, dc->pen->color);
    Fill_Rect(canvas, right - 1, top, right, bottom, dc->pen->color);
  }
  return TRUE;
}

namespace {

/** Where a pixel lies. */
struct PixelPlace {
  uint8_t* at;
  ColorFormat format;
};

/** The pixel at a place of the DC; for the screen and the primary surface that of the uppermost window there. */
PixelPlace Find_Pixel(HDC dc, int x, int y) {
  Canvas canvas{};
  if (dc->surface ? dc->surface->primary : !dc->window && !dc->bitmap) {
    canvas = Canvas_At(x, y);
  } else if (!dc->bitmap) {
    canvas = Dc_Canvases(dc)[0];
  }
  return {Pixel_At(canvas.view, x - canvas.origin.x, y - canvas.origin.y), canvas.view.format};
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
