/* DirectDraw, with its methods as free functions. A surface is a plain pixel buffer in the screen's format. The primary surface
 * has no pixels of its own: what is copied to it appears in its clipper's window, by screen coordinates. */
#pragma once

#include "platform/portable/paint/gdi.h"
#include "platform/portable/system/types.h"

struct IUnknown;
struct DDBLTFX;
struct IDirectDraw;
struct IDirectDrawSurface;
struct IDirectDrawClipper;
struct IDirectDrawPalette;
using LPDIRECTDRAW = IDirectDraw*;
using LPDIRECTDRAWSURFACE = IDirectDrawSurface*;
using LPDIRECTDRAWCLIPPER = IDirectDrawClipper*;
using LPDIRECTDRAWPALETTE = IDirectDrawPalette*;

constexpr HRESULT DirectDraw_Error(uint32_t code) { return Result_Code(0x88760000 | code); }
constexpr HRESULT DD_OK = S_OK;
constexpr HRESULT DDERR_GENERIC = E_FAIL;
constexpr HRESULT DDERR_INVALIDPARAMS = E_INVALIDARG;
constexpr HRESULT DDERR_OUTOFMEMORY = E_OUTOFMEMORY;
constexpr HRESULT DDERR_UNSUPPORTED = E_NOTIMPL;
constexpr HRESULT DDERR_INVALIDRECT = DirectDraw_Error(150);
constexpr HRESULT DDERR_NOCLIPLIST = DirectDraw_Error(205);
constexpr HRESULT DDERR_NOCOLORKEY = DirectDraw_Error(215);
constexpr HRESULT DDERR_NOCOOPERATIVELEVELSET = DirectDraw_Error(212);
constexpr HRESULT DDERR_SURFACEBUSY = DirectDraw_Error(430);
constexpr HRESULT DDERR_CANTLOCKSURFACE = DirectDraw_Error(435);
constexpr HRESULT DDERR_SURFACELOST = DirectDraw_Error(450);
constexpr HRESULT DDERR_WASSTILLDRAWING = DirectDraw_Error(540);
constexpr HRESULT DDERR_NODIRECTDRAWHW = DirectDraw_Error(563);
constexpr HRESULT DDERR_NOTLOCKED = DirectDraw_Error(584);
constexpr HRESULT DDERR_NODC = DirectDraw_Error(586);

constexpr DWORD DDSCL_NORMAL = 8;
constexpr DWORD DDSD_CAPS = 1, DDSD_HEIGHT = 2, DDSD_WIDTH = 4, DDSD_PITCH = 8, DDSD_LPSURFACE = 0x800, DDSD_PIXELFORMAT = 0x1000;
constexpr DWORD DDSCAPS_OFFSCREENPLAIN = 0x40, DDSCAPS_PRIMARYSURFACE = 0x200, DDSCAPS_SYSTEMMEMORY = 0x800,
                DDSCAPS_VIDEOMEMORY = 0x4000;
constexpr DWORD DDPF_PALETTEINDEXED8 = 0x20, DDPF_RGB = 0x40;
constexpr DWORD DDLOCK_SURFACEMEMORYPTR = 0, DDLOCK_WAIT = 1, DDLOCK_READONLY = 0x10;
constexpr DWORD DDBLT_KEYSRC = 0x8000, DDBLT_WAIT = 0x01000000;
constexpr DWORD DDCKEY_SRCBLT = 8;
constexpr DWORD DDPCAPS_8BIT = 4;
constexpr DWORD DDENUM_ATTACHEDSECONDARYDEVICES = 1;

struct DDCOLORKEY {
  DWORD dwColorSpaceLowValue, dwColorSpaceHighValue;
};

struct DDSCAPS {
  DWORD dwCaps;
};

struct DDPIXELFORMAT {
  DWORD dwSize;
  DWORD dwFlags;
  DWORD dwFourCC;
  DWORD dwRGBBitCount;
  DWORD dwRBitMask, dwGBitMask, dwBBitMask;
  DWORD dwRGBAlphaBitMask;
};

struct DDSURFACEDESC {
  DWORD dwSize;
  DWORD dwFlags;
  DWORD dwHeight;
  DWORD dwWidth;
  LONG lPitch;
  DWORD dwBackBufferCount;
  DWORD dwMipMapCount;
  DWORD dwAlphaBitDepth;
  DWORD dwReserved;
  LPVOID lpSurface;
  DDCOLORKEY ddckCKDestOverlay, ddckCKDestBlt, ddckCKSrcOverlay, ddckCKSrcBlt;
  DDPIXELFORMAT ddpfPixelFormat;
  DDSCAPS ddsCaps;
};

using LPDDENUMCALLBACKA = BOOL (*)(GUID* guid, LPSTR description, LPSTR name, LPVOID context);
using LPDDENUMCALLBACKEXA = BOOL (*)(GUID* guid, LPSTR description, LPSTR name, LPVOID context, HMONITOR monitor);
using LPDIRECTDRAWENUMERATEEXA = HRESULT (*)(LPDDENUMCALLBACKEXA callback, LPVOID context, DWORD flags);

/* An object starts with one reference; Release takes one away, gives how many are left, and destroys the object with the last.
 * Results are DD_OK or an error; null objects are not allowed, null out pointers give DDERR_INVALIDPARAMS. */

/** DDERR_NODIRECTDRAWHW where there is no screen. guid and outer are null. */
HRESULT DirectDrawCreate(GUID* guid, IDirectDraw** ddraw, IUnknown* outer);
/** Calls back for each adapter (none without a screen), until a call gives FALSE; the primary one first, with a null guid.
 * Without DDENUM_ATTACHEDSECONDARYDEVICES, as in DirectDrawEnumerateA, for the primary one only. */
HRESULT DirectDrawEnumerateA(LPDDENUMCALLBACKA callback, LPVOID context);
HRESULT DirectDrawEnumerateExA(LPDDENUMCALLBACKEXA callback, LPVOID context, DWORD flags);

/** Only DDSCL_NORMAL. Until a level is set, surfaces and palettes are refused with DDERR_NOCOOPERATIVELEVELSET. */
HRESULT IDirectDraw_SetCooperativeLevel(IDirectDraw* ddraw, HWND window, DWORD flags);
/** Makes the primary surface (DDSCAPS_PRIMARYSURFACE), or an off-screen one with a width and height, zero-filled, in the screen's
 *  format. */
HRESULT IDirectDraw_CreateSurface(IDirectDraw* ddraw, DDSURFACEDESC* desc, IDirectDrawSurface** surface, IUnknown* outer);
HRESULT IDirectDraw_CreateClipper(IDirectDraw* ddraw, DWORD flags, IDirectDrawClipper** clipper, IUnknown* outer);
/** DDPCAPS_8BIT and 256 entries, which are copied. */
HRESULT IDirectDraw_CreatePalette(IDirectDraw* ddraw, DWORD flags, PALETTEENTRY* entries, IDirectDrawPalette** palette,
                                  IUnknown* outer);
ULONG IDirectDraw_Release(IDirectDraw* ddraw);

/** Size, pitch, caps and pixel format. */
HRESULT IDirectDrawSurface_GetSurfaceDesc(IDirectDrawSurface* surface, DDSURFACEDESC* desc);
/** Keeps a reference to the clipper; null removes it. */
HRESULT IDirectDrawSurface_SetClipper(IDirectDrawSurface* surface, IDirectDrawClipper* clipper);
/** The source key (DDCKEY_SRCBLT): pixels whose value lies in the range are left out by DDBLT_KEYSRC. Null removes it. */
HRESULT IDirectDrawSurface_SetColorKey(IDirectDrawSurface* surface, DWORD flags, DDCOLORKEY* key);
/** On the primary surface of an 8-bit screen the palette manager installs the entries after the system's first ten: the screen's
 * entry i shows entry i - 10 of the palette. Keeps a reference. */
HRESULT IDirectDrawSurface_SetPalette(IDirectDrawSurface* surface, IDirectDrawPalette* palette);
/** Gives the pixels of an off-screen surface at desc->lpSurface, of rect or with null of all of it, rows desc->lPitch bytes
 * apart. DDERR_SURFACEBUSY while it is locked or a DC of it is in use; while the blitter works on it, DDLOCK_WAIT waits, and
 * without that flag the code is DDERR_WASSTILLDRAWING. DDLOCK_READONLY changes nothing, other flags are refused. The primary one
 * can't be locked. */
HRESULT IDirectDrawSurface_Lock(IDirectDrawSurface* surface, RECT* rect, DDSURFACEDESC* desc, DWORD flags, HANDLE event);
HRESULT IDirectDrawSurface_Unlock(IDirectDrawSurface* surface, LPVOID pixels);
/** Copies a rectangle, stretched where the sizes differ (smoothly without a key); null rectangles mean all. DDBLT_KEYSRC leaves
 *  out the source's key; effects is null. While the blitter is busy, DDBLT_WAIT waits, and without that flag the code is
 *  DDERR_WASSTILLDRAWING. Other flags are refused. Rectangles may lie in one surface and overlap. One that is empty or reaches
 * outside an off-screen surface gives DDERR_INVALIDRECT; on the primary one the copy is cut to the client area of the clipper's
 * window, and is lost without one. */
HRESULT IDirectDrawSurface_Blt(IDirectDrawSurface* surface, RECT* rect, IDirectDrawSurface* source, RECT* sourceRect, DWORD flags,
                               DDBLTFX* effects);
/** That of the primary surface is of the whole screen: what is drawn is not cut to the clipper's window. */
HRESULT IDirectDrawSurface_GetDC(IDirectDrawSurface* surface, HDC* dc);
HRESULT IDirectDrawSurface_ReleaseDC(IDirectDrawSurface* surface, HDC dc);
/** Restores a lost surface, with its pixels zero. DD_OK also when it wasn't lost. */
HRESULT IDirectDrawSurface_Restore(IDirectDrawSurface* surface);
/** DD_OK or DDERR_SURFACELOST. A lost surface refuses Lock, Blt (as target and source) and GetDC with that code. */
HRESULT IDirectDrawSurface_IsLost(IDirectDrawSurface* surface);
ULONG IDirectDrawSurface_Release(IDirectDrawSurface* surface);

HRESULT IDirectDrawClipper_SetHWnd(IDirectDrawClipper* clipper, DWORD flags, HWND window);
ULONG IDirectDrawClipper_Release(IDirectDrawClipper* clipper);
ULONG IDirectDrawPalette_Release(IDirectDrawPalette* palette);
