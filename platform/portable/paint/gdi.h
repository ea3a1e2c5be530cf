/* Device contexts (DCs) and what is drawn through them. The DC of a window draws in client coordinates, limited to the client
 * area; that of a surface in the surface's coordinates; that of the primary surface in the clipper's window, in screen
 * coordinates. The desktop is told of what was drawn when the DC is released. */
#pragma once

#include "platform/portable/system/types.h"

constexpr int BITSPIXEL = 12, PLANES = 14;
constexpr int COLORONCOLOR = 3, HALFTONE = 4;
constexpr DWORD BI_RGB = 0, BI_BITFIELDS = 3;
constexpr UINT DIB_RGB_COLORS = 0;
constexpr DWORD CBM_INIT = 4;
constexpr DWORD SRCCOPY = 0x00CC0020;
constexpr int TRANSPARENT = 1, OPAQUE = 2;
constexpr int NULLREGION = 1, SIMPLEREGION = 2;
constexpr int FW_NORMAL = 400, FW_BOLD = 700;
constexpr DWORD DEFAULT_CHARSET = 1, OUT_DEFAULT_PRECIS = 0, CLIP_DEFAULT_PRECIS = 0, DEFAULT_QUALITY = 0, PROOF_QUALITY = 2;
constexpr DWORD FIXED_PITCH = 1, FF_MODERN = 0x30;
constexpr int PS_SOLID = 0;
constexpr int WHITE_BRUSH = 0, BLACK_BRUSH = 4, NULL_BRUSH = 5, WHITE_PEN = 6, BLACK_PEN = 7, NULL_PEN = 8;
constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;
constexpr COLORREF RGB(int red, int green, int blue) {
  return static_cast<COLORREF>((red & 255) | (green & 255) << 8 | (blue & 255) << 16);
}
constexpr BYTE GetRValue(COLORREF color) { return static_cast<BYTE>(color & 255); }
constexpr BYTE GetGValue(COLORREF color) { return static_cast<BYTE>(color >> 8 & 255); }
constexpr BYTE GetBValue(COLORREF color) { return static_cast<BYTE>(color >> 16 & 255); }

struct RGBQUAD {
  BYTE rgbBlue, rgbGreen, rgbRed, rgbReserved;
};

struct BITMAPINFOHEADER {
  DWORD biSize;
  LONG biWidth;
  LONG biHeight;
  WORD biPlanes;
  WORD biBitCount;
  DWORD biCompression;
  DWORD biSizeImage;
  LONG biXPelsPerMeter;
  LONG biYPelsPerMeter;
  DWORD biClrUsed;
  DWORD biClrImportant;
};

struct BITMAPINFO {
  BITMAPINFOHEADER bmiHeader;
  RGBQUAD bmiColors[1];  ///< As many as the header says; with BI_BITFIELDS the three masks.
};

struct PALETTEENTRY {
  BYTE peRed, peGreen, peBlue, peFlags;
};

struct LOGPALETTE {
  WORD palVersion;
  WORD palNumEntries;
  PALETTEENTRY palPalEntry[1];  ///< palNumEntries of them.
};

struct BITMAP {
  LONG bmType;
  LONG bmWidth, bmHeight;
  LONG bmWidthBytes;
  WORD bmPlanes;
  WORD bmBitsPixel;
  LPVOID bmBits;
};

/** A DC of the window, or with null of the screen, which can be asked and read; what is drawn on that is lost. Null if there is
 * no such window, or without memory. With a null window it may be called from any thread. */
HDC GetDC(HWND window);
int ReleaseDC(HWND window, HDC dc);
/** BITSPIXEL and PLANES of the screen: 24 and 1 where there is none. 0 for anything else. */
int GetDeviceCaps(HDC dc, int index);

/** A DC to copy a bitmap from: nothing can be drawn through it. Null without memory. dc is ignored. */
HDC CreateCompatibleDC(HDC dc);
BOOL DeleteDC(HDC dc);

/** With HALFTONE stretched copies are smooth, with COLORONCOLOR they repeat or leave out pixels. Gives the mode before. */
int SetStretchBltMode(HDC dc, int mode);
/** Copies a part of a bottom-up bitmap of 8, 16, 24 or 32 bits, stretched to a rectangle. Rows of the bitmap lie at multiples of
 * 4 bytes and srcY counts from the bottom. 16 bits are 5-5-5, or with BI_BITFIELDS what the three masks say, 8 bits index the
 * colours after the header (biClrUsed of them, or 256). At the same size the copy is exact. usage is DIB_RGB_COLORS and operation
 * SRCCOPY. On an 8-bit screen the copy has the system's colours and those of the DC's palette. Gives the rows of the bitmap used;
 * 0 for anything else than the above, for sizes below 1, and if the part reaches outside the bitmap. */
int StretchDIBits(HDC dc, int x, int y, int width, int height, int srcX, int srcY, int srcWidth, int srcHeight, const void* bits,
                  const BITMAPINFO* info, UINT usage, DWORD operation);

/** Copies a part of the bitmap in a memory DC, stretched to a rectangle. operation is SRCCOPY. FALSE for anything else, for sizes
 * below 1, and if the part reaches outside the bitmap. */
BOOL StretchBlt(HDC dc, int x, int y, int width, int height, HDC source, int srcX, int srcY, int srcWidth, int srcHeight,
                DWORD operation);

/** A bitmap from what StretchDIBits takes; flags is CBM_INIT. Null for anything else, or without memory. */
HBITMAP CreateDIBitmap(HDC dc, const BITMAPINFOHEADER* header, DWORD flags, const void* bits, const BITMAPINFO* info, UINT usage);
/** Describes a bitmap in a BITMAP. Gives the bytes stored, or 0 for another kind of object or size. */
int GetObjectA(HGDIOBJ object, int size, void* out);

constexpr BYTE PC_RESERVED = 1, PC_NOCOLLAPSE = 4;

/* Palettes. An 8-bit screen shows 256 colours: the system's own twenty at both ends, and between them, from the eleventh on,
 * those of the palette installed last. Other screens have none. */
HPALETTE CreatePalette(const LOGPALETTE* palette);
/** Selects a palette into the DC; gives the one before, or null for null. One selected as background takes no colours of the
 * screen: RealizePalette then maps it to those there. */
HPALETTE SelectPalette(HDC dc, HPALETTE palette, BOOL background);
/** Installs the colours of the DC's palette on an 8-bit screen: each once and only if the system has it not, but those with
 * PC_NOCOLLAPSE always. Bitmaps copied with the palette get these colours from then on. Gives how many of the screen's colours
 * changed. */
UINT RealizePalette(HDC dc);
/** Reads colours of an 8-bit screen; gives how many, 0 on other screens. */
UINT GetSystemPaletteEntries(HDC dc, UINT first, UINT count, PALETTEENTRY* entries);

/** A font with cells of that height and width, in pixels (width 0: the one that belongs to the height), of the only face there
 * is, monospaced with the measures of Courier New. Null for heights below 1 and without memory. Everything else is ignored. */
HFONT CreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic, DWORD underline,
                  DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision, DWORD quality, DWORD pitchAndFamily,
                  LPCSTR face);
/** A pen one pixel wide; null unless style is PS_SOLID and width 0 or 1. */
HPEN CreatePen(int style, int width, COLORREF color);
/** The brushes and pens named above, which are never deleted; null for anything else. */
HGDIOBJ GetStockObject(int index);
/** Selects a font, pen or brush into the DC, or a bitmap into a memory DC; gives the one before, or null. */
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
/** Deletes a font, pen, bitmap or palette, which must not be selected into a DC. Stock objects stay. FALSE for null. */
BOOL DeleteObject(HGDIOBJ object);

/** Both give the value before. */
COLORREF SetTextColor(HDC dc, COLORREF color);
int SetBkMode(HDC dc, int mode);
/** Draws text with its cell's upper left corner at (x, y), each byte a Latin-1 character; with OPAQUE on white. FALSE if no face
 * is found. */
BOOL TextOutA(HDC dc, int x, int y, LPCSTR text, int length);
/** Draws an outline with the pen and fills it with the brush. */
BOOL Rectangle(HDC dc, int left, int top, int right, int bottom);
/** Limits what is drawn to that rectangle and what it was limited to before. Gives the kind of region that is left. */
int IntersectClipRect(HDC dc, int left, int top, int right, int bottom);
/** Ends the limit. region is null. */
int SelectClipRgn(HDC dc, HRGN region);
/** CLR_INVALID outside of what the DC can draw on. */
COLORREF GetPixel(HDC dc, int x, int y);
/** Gives the colour that was set, which the screen's depth may change, or CLR_INVALID. */
COLORREF SetPixel(HDC dc, int x, int y, COLORREF color);
