/* Windows from the inside, and what the parts of window/ need of each other. For the files of the layer alone. */
#pragma once

#include "platform/portable/paint/pixels.h"
#include "platform/portable/window/controls.h"
#include "platform/portable/window/window.h"

#include <string>
#include <vector>

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

/** The window, or null if there is none: the pointer is compared with those of all windows, never followed. */
HWND Window_Find(HWND window);
/** Visible with all its parents, and none of them minimised. */
bool Window_Shows(HWND window);
POINT Window_Origin(HWND window);
/** The top-level window that it lies in; null for null. */
HWND Window_Top(HWND window);
/** The client's pixels, none when the window has none. */
PixelView Window_View(HWND window);
/** Gives the window new pixels for its size and the screen's depth, black. */
void Window_Make_Pixels(HWND window);
/** Gives the window another size, has all of it painted, and tells the desktop. Sends nothing. */
void Window_Resize(HWND window, int32_t width, int32_t height);
void Window_Set_Minimised(HWND window, bool minimised);
/** lParam of WM_SIZE. */
LPARAM Window_Size_Param(HWND window);

/** The class of a control, or null. */
const WNDCLASSA* Control_Class(LPCSTR name);
bool Is_Tooltip(HWND window);
/** The text of that window's tooltip, for which the window is asked; empty if it has none. */
std::string Tooltip_Text(HWND window);
/** The light grey of dialogs and buttons. */
constexpr uint32_t ButtonFace = 0xC0C0C0;

/** Calls the keyboard hooks for a message; true when it is swallowed. */
bool Hooks_Swallow(const MSG& message);
/** Drops the messages of a window that ends. */
void Messages_Forget(HWND window);
/** Drops all messages, WM_QUIT too. */
void Messages_Clear();

/* ---- Calls of the desktop, skipped where it has no such function ---------------------------------------------------------- */

void Desktop_Window_Created(HWND window);
void Desktop_Window_Changed(HWND window);
void Desktop_Pixels_Changed(HWND window);
void Desktop_Window_Destroyed(HWND window);
/** False if there is no pumpEvents. */
bool Desktop_Pump(uint32_t milliseconds);
void Desktop_Wake();
void Desktop_Cursor_Changed();
/** False if there is no showMessage. */
bool Desktop_Show_Message(HWND owner, const char* text, const char* caption, UINT type);
