/* Windows and their messages. A window is its client area, without border and title bar, and owns its pixels in the depth of the
 * screen. One thread works on windows; the others may call PostMessageA only. */
#pragma once

#include "platform/portable/system/types.h"

using HOOKPROC = LRESULT (*)(int code, WPARAM wParam, LPARAM lParam);
using WNDPROC = LRESULT (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

enum : UINT {
  WM_NULL = 0x0000,
  WM_DESTROY = 0x0002,
  WM_SIZE = 0x0005,
  WM_ENABLE = 0x000A,
  WM_PAINT = 0x000F,
  WM_CLOSE = 0x0010,
  WM_QUIT = 0x0012,
  WM_ERASEBKGND = 0x0014,
  WM_SETCURSOR = 0x0020,
  WM_NOTIFY = 0x004E,
  WM_KEYDOWN = 0x0100,
  WM_KEYUP = 0x0101,
  WM_CHAR = 0x0102,
  WM_INITDIALOG = 0x0110,
  WM_COMMAND = 0x0111,
  WM_MOUSEMOVE = 0x0200,
  WM_LBUTTONDOWN = 0x0201,
  WM_LBUTTONUP = 0x0202,
  WM_RBUTTONDOWN = 0x0204,
  WM_RBUTTONUP = 0x0205,
  WM_QUERYNEWPALETTE = 0x030F,
  WM_PALETTECHANGED = 0x0311,
  WM_USER = 0x0400,
  WM_APP = 0x8000,
};

constexpr DWORD WS_OVERLAPPED = 0;
constexpr DWORD WS_POPUP = 0x80000000;
constexpr DWORD WS_CHILD = 0x40000000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_DISABLED = 0x08000000;
constexpr DWORD WS_OVERLAPPEDWINDOW = 0x00CF0000;
constexpr int HTCLIENT = 1;
constexpr UINT CS_VREDRAW = 1, CS_HREDRAW = 2;
constexpr int CW_USEDEFAULT = INT32_MIN;
constexpr int SW_HIDE = 0, SW_SHOWNORMAL = 1, SW_SHOW = 5, SW_MINIMIZE = 6, SW_RESTORE = 9;
constexpr WPARAM SIZE_RESTORED = 0, SIZE_MINIMIZED = 1;
constexpr UINT SWP_NOSIZE = 1, SWP_NOMOVE = 2, SWP_NOZORDER = 4, SWP_NOACTIVATE = 0x10, SWP_FRAMECHANGED = 0x20,
               SWP_SHOWWINDOW = 0x40;
constexpr int GWL_STYLE = -16, GWLP_WNDPROC = -4, GWLP_HINSTANCE = -6, GWLP_USERDATA = -21;
constexpr int SM_CXSCREEN = 0, SM_CYSCREEN = 1;
constexpr UINT SPI_GETWORKAREA = 0x30;
constexpr int WH_KEYBOARD = 2, HC_ACTION = 0;
constexpr UINT PM_NOREMOVE = 0, PM_REMOVE = 1;
constexpr DWORD QS_ALLINPUT = 0x04FF;
constexpr int COLOR_WINDOW = 5;
constexpr WPARAM VK_BACK = 0x08, VK_RETURN = 0x0D, VK_ESCAPE = 0x1B, VK_SPACE = 0x20, VK_LEFT = 0x25, VK_UP = 0x26,
                 VK_RIGHT = 0x27, VK_DOWN = 0x28;
#define HWND_TOP (static_cast<HWND>(nullptr))

struct WNDCLASSA {
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;  ///< A brush, a system colour plus 1 (all of them white), or null: the background is not erased.
  LPCSTR lpszMenuName;
  LPCSTR lpszClassName;
};

struct MSG {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  DWORD time;
  POINT pt;
};
using LPMSG = MSG*;

struct PAINTSTRUCT {
  HDC hdc;
  BOOL fErase;
  RECT rcPaint;
  BOOL fRestore;
  BOOL fIncUpdate;
  BYTE rgbReserved[32];
};

struct WINDOWPLACEMENT {
  UINT length;
  UINT flags;
  UINT showCmd;
  POINT ptMinPosition;
  POINT ptMaxPosition;
  RECT rcNormalPosition;
};

/* ---- Windows -------------------------------------------------------------------------------------------------------------- */

/** Registers a class; one of the same name is replaced. 0 without a name or procedure. */
ATOM RegisterClassA(const WNDCLASSA* windowClass);
/** Creates a window of a registered class, or a control. With WS_CHILD the position counts from the parent's client area and menu
 * is the number in the dialog; without it the parent is the owner. Either way the window ends with it. The only message sent is
 * WM_SIZE, when the window is shown for the first time. param is null. Null without such a class, for a parent that is no window,
 * and without memory. */
HWND CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR title, DWORD style, int x, int y, int width, int height, HWND parent,
                     HMENU menu, HINSTANCE instance, LPVOID param);
/** Sends WM_DESTROY, then ends the window and its children; messages still posted to them are dropped. */
BOOL DestroyWindow(HWND window);
/** Gives whether the window was visible. */
BOOL ShowWindow(HWND window, int command);
/** Whether there is such a window now. Any pointer may be asked for. */
BOOL IsWindow(HWND window);
/** Whether the window and all its parents are visible. What is drawn in one that isn't, or is minimised, is lost. */
BOOL IsWindowVisible(HWND window);
BOOL IsIconic(HWND window);
BOOL IsWindowEnabled(HWND window);
/** The parent of a child, the owner of a WS_POPUP; null for others. */
HWND GetParent(HWND window);
/** Gives whether the window was disabled. A change sends WM_ENABLE. */
BOOL EnableWindow(HWND window, BOOL enable);
BOOL SetWindowTextA(HWND window, LPCSTR text);
/** Copies at most size - 1 characters and a zero; gives the characters copied. */
int GetWindowTextA(HWND window, LPSTR text, int size);
/** From (0, 0); empty while the window is minimised. */
BOOL GetClientRect(HWND window, RECT* rect);
/** In screen coordinates; far outside the screen while the window is minimised. */
BOOL GetWindowRect(HWND window, RECT* rect);
BOOL ClientToScreen(HWND window, POINT* point);
/** Moves and sizes the window; the order of windows stays. A new size sends WM_SIZE and invalidates the whole window. */
BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags);
/** The same; repaint invalidates the whole window. */
BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
/** GWL_STYLE, GWLP_USERDATA, GWLP_WNDPROC, GWLP_HINSTANCE; 0 for anything else. The last one can't be set. */
LONG_PTR GetWindowLongPtrA(HWND window, int index);
/** Gives the value before. */
LONG_PTR SetWindowLongPtrA(HWND window, int index, LONG_PTR value);
/** Leaves rect as it is: a window is its client area. */
BOOL AdjustWindowRect(RECT* rect, DWORD style, BOOL menu);
/** Adds rect, or with null the whole client area, to what WM_PAINT has to paint. */
BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase);
/** Starts painting what is invalid, which counts as valid from then on. Sends WM_ERASEBKGND if InvalidateRect asked for it. */
HDC BeginPaint(HWND window, PAINTSTRUCT* paint);
BOOL EndPaint(HWND window, const PAINTSTRUCT* paint);
BOOL GetWindowPlacement(HWND window, WINDOWPLACEMENT* placement);

/* ---- The system ----------------------------------------------------------------------------------------------------------- */

/** SM_CXSCREEN and SM_CYSCREEN: size of the primary monitor. 0 for anything else. */
int GetSystemMetrics(int index);
/** SPI_GETWORKAREA: the primary monitor as RECT. FALSE for anything else. */
BOOL SystemParametersInfoA(UINT action, UINT param, LPVOID data, UINT flags);
BOOL SetRect(RECT* rect, int left, int top, int right, int bottom);
BOOL OffsetRect(RECT* rect, int x, int y);
/** Shows that cursor; gives the one shown before. */
HCURSOR SetCursor(HCURSOR cursor);

/** Calls the procedure for each key that PeekMessageA removes or GetMessageA gives, with HC_ACTION, wParam and lParam. Only the
 * newest hook is called. A result other than 0 swallows the key. type is WH_KEYBOARD; the thread is that of the windows. */
HHOOK SetWindowsHookExA(int type, HOOKPROC procedure, HINSTANCE module, DWORD thread);
BOOL UnhookWindowsHookEx(HHOOK hook);
/** Calls the hook set before that one; gives its result, or 0 if there is none. */
LRESULT CallNextHookEx(HHOOK hook, int code, WPARAM wParam, LPARAM lParam);

/* ---- Messages ------------------------------------------------------------------------------------------------------------- */

/** Removes the next message, or with PM_NOREMOVE leaves it: posted ones first, in their order, then WM_QUIT, then WM_PAINT for
 * windows with something to paint. Keys and buttons for a disabled top-level window or its children are dropped. window: only
 * messages of that window, or null. first, last: range, or 0 and 0 for all. FALSE if there is none. */
BOOL PeekMessageA(MSG* message, HWND window, UINT first, UINT last, UINT remove);
/** Waits for a message and removes it. 0 for WM_QUIT, else 1. */
BOOL GetMessageA(MSG* message, HWND window, UINT first, UINT last);
/** Posts the WM_CHAR that belongs to a WM_KEYDOWN of a letter (lower case), digit, space, Return, Escape or Backspace. */
BOOL TranslateMessage(const MSG* message);
LRESULT DispatchMessageA(const MSG* message);
/** A message number of the whole process for that name, the same each time. 0 for null or an empty name. Any thread. */
UINT RegisterWindowMessageA(LPCSTR name);
/** Queues a message and wakes the thread that waits. It is dropped if its window has ended when its turn comes. Any thread. */
BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** Calls the window's procedure; on the windows' thread only. 0 if there is no such window. */
LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CallWindowProcA(WNDPROC proc, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
void PostQuitMessage(int exitCode);
/** WM_CLOSE ends the window, WM_PAINT is marked as done, WM_ERASEBKGND fills with the class's brush; others give 0. */
LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** Waits until there is a message (WAIT_OBJECT_0) or the time is over (WAIT_TIMEOUT). count is 0 and handles null. */
DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds, DWORD wakeMask);
