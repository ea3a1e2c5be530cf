/* What the portable operations share: the machine as screen.h describes it, and the records behind the handles. For the files of
 * this folder alone. */
#pragma once

#include "platform/portable/paint/ddraw.h"
#include "platform/portable/paint/gdi.h"
#include "platform/portable/paint/pixels.h"
#include "platform/portable/screen.h"
#include "platform/portable/window/controls.h"
#include "platform/portable/window/window.h"

#include <string>
#include <vector>

/* ---- The machine ---------------------------------------------------------------------------------------------------------- */

struct Machine {
  bool on;  ///< There is a screen.
  ScreenSetup setup;
  uint32_t colors[256];  ///< What the indices of an 8-bit screen show.
  int32_t losses;        ///< How often all surfaces were lost; a surface that has seen fewer is lost.
};
extern Machine machine;

/** The screen's format; bits is 0 where there is none, or one without pixels (a depth that tests made up). */
ColorFormat Screen_Format();
/** Where a monitor lies. */
RECT Monitor_Area(int32_t index);

/** Counts the call and tells whether it is to fail; *code, which may be null, is then the code to give. Any thread. */
bool Step_Fails(ScreenStep step, HRESULT* code = nullptr);
/** Count the objects alive. Any thread. */
void Object_Made();
void Object_Ended();

/** The hooks of the desktop; those of the window and the pixels are skipped where null. */
void Desktop_Window_Created(HWND window);
void Desktop_Window_Changed(HWND window);
void Desktop_Pixels_Changed(HWND window);
void Desktop_Window_Destroyed(HWND window);
/** Gives false if there is no pumpEvents. */
bool Desktop_Pump(uint32_t milliseconds);
void Desktop_Wake();
void Desktop_Cursor_Changed();
/** Gives false if there is no showMessage. */
bool Desktop_Show_Message(HWND owner, const char* text, const char* caption, UINT type);

void Add_Debug_Output(const char* text);
void Add_Message(const std::string& message);

/* ---- Windows -------------------------------------------------------------------------------------------------------------- */

struct OpenDialog;  // dialogs.cpp

struct HWND__ {
  WNDPROC proc;
  HBRUSH background;
  HWND parent;
  HWND owner;  ///< Of a window without a parent: it ends with its owner.
  HINSTANCE instance;
  DWORD style;  ///< WS_VISIBLE and WS_DISABLED are kept here.
  LONG_PTR userData;
  std::string title;
  int32_t x, y;  ///< From the parent's client area, or the screen.
  int32_t width, height;
  bool minimised, shownOnce, ending, eraseWanted;
  RECT invalid;  ///< Empty: nothing to paint.
  std::vector<uint8_t> pixels;
  int32_t pitch;
  OpenDialog* dialog;  ///< Of a dialog: while it is open.
  int id;              ///< Of a control: its number in the dialog.
  HBITMAP face;        ///< Of a button: its picture,
  bool pressed;        ///< and whether it is down.
  TOOLINFOA tool;      ///< Of a tooltip; cbSize is 0 without one.
};

/** All windows, oldest first; a later one lies above an earlier one. */
extern std::vector<HWND> allWindows;

/** The window, or null for what is none. */
HWND Window_Find(HWND window);
/** Visible with all its parents, and none of them minimised. */
bool Window_Shows(HWND window);
POINT Window_Origin(HWND window);
/** The top-level window that it lies in; null for null. */
HWND Window_Top(HWND window);
/** The client's pixels, none when the window has none. */
PixelView Window_View(HWND window);
/** Makes the pixels for the window's size and the screen's depth anew, black. */
void Window_Make_Pixels(HWND window);
/** Gives the window another size, has all of it painted, and tells the desktop. Sends nothing. */
void Window_Resize(HWND window, int32_t width, int32_t height);
void Window_Set_Minimised(HWND window, bool minimised);
LPARAM Window_Size_Param(HWND window);
/** The class of a control, or null. */
const WNDCLASSA* Control_Class(LPCSTR name);
bool Is_Tooltip(HWND window);
/** The light grey of dialogs and buttons. */
constexpr uint32_t ButtonFace = 0xC0C0C0;
/** Tells a message that was taken to the hooks; true when it is theirs. */
bool Hooks_Swallow(const MSG& message);
/** Drops what is posted to a window that ends. */
void Messages_Forget(HWND window);
/** Drops all messages, the wish to quit too. */
void Messages_Clear();

/* ---- Device contexts and what is selected into them ----------------------------------------------------------------------- */

enum class GdiKind { Font, Pen, Brush, Bitmap, Palette };

/** Each GDI object starts with this. */
struct GdiObject {
  GdiKind kind;
  bool stock;
};

struct HFONT__ {
  GdiObject head;
  int32_t height, width;
};

struct HPEN__ {
  GdiObject head;
  bool draws;
  COLORREF color;
};

struct HBRUSH__ {
  GdiObject head;
  bool draws;
  COLORREF color;
};

struct HBITMAP__ {
  GdiObject head;
  int32_t width, height;
  std::vector<uint32_t> colors;  ///< 0xRRGGBB, top row first.
};

struct HPALETTE__ {
  GdiObject head;
  std::vector<uint32_t> colors;  ///< 0xRRGGBB.
};

struct HDC__ {
  HWND window;                  ///< Window drawn in, or null.
  IDirectDrawSurface* surface;  ///< Surface drawn on, or null. With neither it is the screen's.
  HBITMAP bitmap;               ///< Of a memory DC.
  bool changed;                 ///< Something was drawn.
  int stretchMode;
  COLORREF textColor;
  int backgroundMode;
  HFONT font;
  HPEN pen;
  HBRUSH brush;
  HPALETTE palette;
};

/** Brings colours to an 8-bit screen, from the eleventh on; gives how many of the screen's changed. */
UINT Install_Colors(const uint32_t* colors, size_t count);

/** A bitmap as StretchDIBits is given it. */
struct DibSource {
  PixelView view;
  uint32_t colors[256];
};

/** Reads a bitmap's header. Gives false for what is not provided for. */
bool Describe_Dib(const void* bits, const BITMAPINFO* info, DibSource& source);

/** What the DC draws on at this moment. */
struct DrawTarget {
  PixelView view;
  POINT origin;  ///< Coordinates of the view's first pixel, as the DC counts.
};
DrawTarget Dc_Target(HDC dc);
/** A DC for a window, a surface, or with both null the screen. Null without memory. */
HDC Dc_Make(HWND window, IDirectDrawSurface* surface);
/** Gives a DC back and tells the desktop what was drawn. */
void Dc_End(HDC dc);
/** 0xRRGGBB from 0x00BBGGRR, and back. */
uint32_t Swap_Color(uint32_t color);

/* ---- DirectDraw ----------------------------------------------------------------------------------------------------------- */

struct IDirectDraw {
  ULONG references;
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
  int32_t losses;    ///< machine.losses when it was made or restored.
  PixelView view;    ///< Without pixels for the primary one.
  uint8_t* store;    ///< Pixels and guards, owned; null for the primary one.
  size_t storeSize;  ///< Bytes of it.
  uint8_t guard;     ///< What each byte of the guards holds.
  bool keyed;
  DDCOLORKEY key;
  IDirectDrawClipper* clipper;
  IDirectDrawPalette* palette;
  HDC dc;  ///< The DC that is out, or null.
};

/** The window that the primary surface shows in, or null. */
HWND Surface_Window(const IDirectDrawSurface* surface);
