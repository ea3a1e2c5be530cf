/* The machine that the portable operations run on, as its owner sees it: tests describe it, make steps fail and read pixels back;
 * the viewer's desktop hooks itself in here. No part of the library includes this header.
 *
 * Everything is off at first: no screen, a depth of 24 bits, nothing shown. All of it is process-wide, and used by one thread
 * except where told. */
#pragma once

#include "platform/portable/paint/ddraw.h"
#include "platform/portable/system/kernel.h"
#include "platform/portable/system/types.h"
#include "platform/portable/window/dialogs.h"
#include "platform/portable/window/window.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct ScreenSetup {
  int32_t width = 1024;
  int32_t height = 768;
  int32_t bits = 32;                                                       ///< 8, 16, 24, 32; tests may give others.
  uint32_t redMask = 0xFF0000, greenMask = 0x00FF00, blueMask = 0x0000FF;  ///< For 16 bits: F800 7E0 1F, or 7C00 3E0 1F.
  int32_t adapters = 1;  ///< Monitors stand side by side, the primary one leftmost, all of the same size.
  bool primaryInSystemMemory = false;
};

/** The masks that belong to a depth; 15 gives the setup of a 16-bit screen with five bits each. */
ScreenSetup Screen_Of_Depth(int32_t bits);

/** Gives the machine a screen. Windows made before keep their size and lose their pixels. */
void Screen_Set_Up(const ScreenSetup& setup);

/** Takes the screen away again, and every failure, message, text and the file chooser with it. Windows must have been
 * destroyed. */
void Screen_Remove();

/** Steps that can be made to fail. */
enum class ScreenStep {
  Memory,               ///< HeapAlloc gives null.
  LoadDirectDraw,       ///< LoadLibraryA of ddraw.dll.
  FindEnumerateEx,      ///< GetProcAddress of DirectDrawEnumerateExA.
  FindMonitorFunction,  ///< GetProcAddress of GetMonitorInfoA.
  DirectDrawCreate,
  SetCooperativeLevel,
  CreatePrimary,
  DescribePrimary,  ///< GetSurfaceDesc of the primary surface.
  CreateClipper,
  ClipperSetWindow,
  SetClipper,
  CreateOffscreen,
  CreateOffscreenNull,  ///< Success, and a null pointer.
  CreatePalette,
  LoadBitmap,
  CreateCompatibleDC,
  RestorePrimary,
  RestoreOffscreen,
  LockOffscreen,
  LockWithoutPixels,  ///< The lock succeeds and gives a null lpSurface.
  SurfaceGetDC,
  BltOffscreen,  ///< Blt onto an off-screen surface.
  BltPrimary,    ///< Blt onto the primary surface.
  GetMonitorInfo,
  CreateMutex,
  WriteFile,
  ShortWrite,  ///< WriteFile succeeds and writes one byte less.
  CreateRegistryKey,
  SetRegistryValue,
};

/** From now on lets `after` calls of the step pass, then makes `times` calls fail, with `code` where the step gives an HRESULT.
 *  A new setting of the same step replaces the old one. May be called from a draw callback. */
void Screen_Fail(ScreenStep step, int32_t after = 0, int32_t times = INT32_MAX, HRESULT code = E_FAIL);
void Screen_Fail_Nothing();
/** How often a step was asked for since the screen was set up. */
int32_t Screen_Calls(ScreenStep step);

/** Makes all surfaces lost, until each is restored. */
void Screen_Lose_Surfaces();

/** Memory, handles and objects of the portable layer still alive: heap blocks, mutexes, files, windows, DCs, GDI objects,
 * DirectDraw objects, open registry keys, hooks. */
int32_t Screen_Objects_Alive();

/** State of a window that its user would change. */
void Screen_Minimise(HWND window, bool minimised);
void Screen_Disable(HWND window, bool disabled);
/** Moves the window to that monitor, 0 the primary one. */
void Screen_Move_To_Monitor(HWND window, int32_t monitor);
/** Tells a top-level window where on the screen its user has put its client area. */
void Screen_Move(HWND window, int32_t x, int32_t y);

/** Pixels of a window's client area, top row first, rows at *pitch bytes, in the screen's depth. Null if it has none. */
const uint8_t* Screen_Window_Pixels(HWND window, int32_t* width, int32_t* height, int32_t* pitch);
/** Colour of a client pixel as 0xRRGGBB; 0xFFFFFFFF outside. */
uint32_t Screen_Window_Color(HWND window, int32_t x, int32_t y);
/** Copies those of a part of the client area to rows at `pitch` bytes, if the window has pixels; on a screen of 32 bits the words
 * as they are, whose upper byte may hold anything. */
void Screen_Copy_Colors(HWND window, const RECT& part, uint32_t* to, ptrdiff_t pitch);
/** The pixels of a surface, top row first. */
const uint8_t* Screen_Surface_Pixels(IDirectDrawSurface* surface, int32_t* width, int32_t* height, int32_t* pitch);
/** Whether everything around an off-screen surface's pixels still holds what it was filled with: nothing was written between
 * its rows, above the first and below the last. */
bool Screen_Surface_Guards_Whole(const IDirectDrawSurface* surface);

/** What was sent to the debug output, or shown in message boxes ("caption|text"), since the last look. */
std::vector<std::string> Screen_Take_Debug_Output();
std::vector<std::string> Screen_Take_Messages();

/** Sets the millisecond tick that GetTickCount gives, and the time of day, until Screen_Real_Time. */
void Screen_Set_Tick(uint32_t tick);
void Screen_Set_Local_Time(const SYSTEMTIME& time);
void Screen_Real_Time();

/** Sets a registry value, and makes its key: a root's name and the path, as in "HKEY_CURRENT_USER\\Software". Any thread, as the
 * next two; the registry outlives the screen. */
void Screen_Set_Registry(const std::string& key, const std::string& name, uint32_t type, const std::vector<uint8_t>& data);
/** Reads a registry value, and its type, which may be null; nothing if it isn't there. */
std::optional<std::vector<uint8_t>> Screen_Registry(const std::string& key, const std::string& name, uint32_t* type = nullptr);
/** Empties the registry. */
void Screen_Forget_Registry();

/** Answers the dialog that asks for a file, which is described as its caller has filled it in: gives the chosen name, or nothing
 * to decline. It may run messages, as the user's dialog does. Without one, all are declined. */
using ScreenFileChooser = std::function<std::optional<std::string>(const OPENFILENAMEA& dialog)>;
void Screen_Set_File_Chooser(const ScreenFileChooser& chooser);

/** The dialog opened last that is still open, or null. */
HWND Screen_Dialog();

/** The text that a tooltip shows for that window, asked for as the pointer's rest on it would; empty without one. */
std::string Screen_Tooltip_Text(HWND window);
/** Shows that text in the tooltip, below the middle of the window but within that area of the screen. Gives the tooltip, or null
 * if the window has none or there is no text. */
HWND Screen_Open_Tooltip(HWND window, const RECT& area);
void Screen_Close_Tooltip(HWND tooltip);
bool Screen_Is_Tooltip(HWND window);

/** A window as it is seen in its top-level one, in that one's client coordinates. */
struct ScreenPart {
  HWND window;
  RECT place;  ///< All of its client area,
  RECT seen;   ///< and what its parents leave of it; not empty.
};
/** A top-level window and all children that show, each above those before it. Empty while the window itself doesn't show. */
std::vector<ScreenPart> Screen_Parts(HWND top);

/** The number of the cursor set last, 0 for none. */
uintptr_t Screen_Cursor();
/** That cursor as a .cur file; empty for none and for the system's own. */
std::span<const uint8_t> Screen_Cursor_File();

/** A desktop behind the portable windows; every function may be null. Called on the thread that works on the window. */
struct ScreenDesktop {
  void (*windowCreated)(HWND window);
  void (*windowChanged)(HWND window);  ///< Place, size, title, style or visibility.
  void (*pixelsChanged)(HWND window);
  void (*windowDestroyed)(HWND window);
  /** Turns the desktop's events into posted messages; waits up to that many milliseconds if there is none. */
  void (*pumpEvents)(uint32_t milliseconds);
  /** Asks a waiting pumpEvents to return; called on any thread. */
  void (*wake)();
  /** Screen_Cursor tells which one is set. */
  void (*cursorChanged)() = nullptr;
  /** Shows a message box until it is closed, instead of keeping it for Screen_Take_Messages. The texts are not null. */
  void (*showMessage)(HWND owner, const char* text, const char* caption, UINT type) = nullptr;
};
void Screen_Set_Desktop(const ScreenDesktop& desktop);

/** Tells a window that its user gave the client area another size: pixels are made anew and WM_SIZE and WM_PAINT posted. */
void Screen_Resize_Client(HWND window, int32_t width, int32_t height);
