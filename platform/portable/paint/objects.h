/* The records of GDI handles and DirectDraw objects. For the files of the layer alone. */
#pragma once

#include "platform/portable/paint/canvas.h"
#include "platform/portable/paint/ddraw.h"
#include "platform/portable/paint/gdi.h"
#include "platform/portable/paint/pixels.h"

#include <vector>

/* ---- GDI ------------------------------------------------------------------------------------------------------------------ */

enum class GdiKind { Font, Pen, Brush, Bitmap, Palette };

/** Each GDI object starts with this. */
struct GdiObject {
  GdiKind kind;
  bool stock;  ///< Never ends.
};

struct HFONT__ {
  GdiObject object;
  int32_t height, width;
};

struct HPEN__ {
  GdiObject object;
  bool draws;
  COLORREF color;
};

struct HBRUSH__ {
  GdiObject object;
  bool draws;
  COLORREF color;
};

struct HBITMAP__ {
  GdiObject object;
  int32_t width, height;
  std::vector<uint32_t> colors;  ///< 0xRRGGBB, top row first.
};

struct HPALETTE__ {
  GdiObject object;
  std::vector<uint32_t> colors;  ///< 0xRRGGBB.
  std::vector<uint8_t> flags;    ///< Of each colour.
  std::vector<uint8_t> indices;  ///< For each colour the index of the screen that it was realized to last; empty before.
};

struct HDC__ {
  HWND window;                  ///< Window drawn in, or null.
  IDirectDrawSurface* surface;  ///< Surface drawn on, or null. With neither it is the screen's.
  HBITMAP bitmap;               ///< Of a memory DC.
  bool changed;                 ///< Something was drawn.
  bool clipped;                 ///< It draws only in
  RECT clip;                    ///< this rectangle, in its coordinates.
  int stretchMode;
  COLORREF textColor;
  int backgroundMode;
  HFONT font;
  HPEN pen;
  HBRUSH brush;
  HPALETTE palette;
  bool background;  ///< How the palette was selected.
};

/** A DC for a window, a surface, or with both null the screen. Null without memory. */
HDC Dc_Make(HWND window, IDirectDrawSurface* surface);
/** Frees a DC and tells the desktop what was drawn. */
void Dc_End(HDC dc);
/** What the DC draws on at this moment. That of the primary surface draws on the whole screen, on all windows. */
std::vector<Canvas> Dc_Canvases(HDC dc);
/** What bitmaps copied through the DC to an 8-bit screen are matched to: the system's own colours and those of the DC's palette,
 * each at the index that it was realized to. The other indices repeat the first colour, so that none is chosen. */
void Dc_Reachable_Colors(HDC dc, uint32_t (&colors)[256]);

/** A bitmap as StretchDIBits is given it. */
struct DibSource {
  PixelView view;
  uint32_t colors[256];
};
/** Reads a bitmap's header. False for kinds of bitmaps that StretchDIBits doesn't take. */
bool Describe_Dib(const void* bits, const BITMAPINFO* info, DibSource& source);

/** 0xRRGGBB from 0x00BBGGRR, and back. */
uint32_t Swap_Color(uint32_t color);
/** 0xRRGGBB. */
uint32_t Entry_Color(const PALETTEENTRY& entry);

/* ---- DirectDraw ----------------------------------------------------------------------------------------------------------- */

struct IDirectDraw {
  ULONG references;
  bool leveled;  ///< Its cooperative level is set.
};

struct IDirectDrawClipper {
  ULONG references;
  HWND window;
};

struct IDirectDrawPalette {
  ULONG references;
  uint32_t colors[256];
};

struct IDirectDrawSurface {
  ULONG references;
  bool primary;
  bool locked;
  int32_t losses;   ///< Those of the screen when it was made or restored.
  PixelView view;   ///< Without pixels for the primary one.
  uint8_t* memory;  ///< Where the rows lie, owned; null for the primary one.
  bool keyed;
  DDCOLORKEY key;
  IDirectDrawClipper* clipper;
  IDirectDrawPalette* palette;
  HDC dc;  ///< The DC that GetDC has given, until ReleaseDC; or null.
};

/** The window that the primary surface shows in, or null. */
HWND Surface_Window(const IDirectDrawSurface* surface);
/** Bytes of a row that belong to pixels. */
size_t Pixel_Row_Bytes(const PixelView& view);
