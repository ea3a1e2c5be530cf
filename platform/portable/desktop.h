/* What a desktop supplies to the portable windows, and what it sees of them. A desktop such as platform/sdl/ describes the
 * screen, hooks itself in, shows the windows' pixels, and tells the windows what their user does. Until then there is no screen:
 * its depth counts as 24 bits and nothing is shown.
 *
 * All of it is process-wide, and used by the one thread that works on windows, unless a comment allows any. */
#pragma once

#include "platform/portable/system/types.h"
#include "platform/portable/window/dialogs.h"
#include "platform/portable/window/window.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

/* ---- The screen ----------------------------------------------------------------------------------------------------------- */

struct ScreenSetup {
  int32_t width = 1024;  ///< Of each monitor, in pixels.
  int32_t height = 768;
  int32_t bits = 32;  ///< 8, 16, 24 or 32. Windows and surfaces of another depth have no pixels.
  uint32_t redMask = 0xFF0000, greenMask = 0x00FF00, blueMask = 0x0000FF;  ///< For 16 bits: F800 7E0 1F, or 7C00 3E0 1F.
  int32_t adapters = 1;                ///< Monitors: side by side, the primary one leftmost, all of the same size.
  bool primaryInSystemMemory = false;  ///< DirectDraw then says so of the primary surface, and displays don't use it.
};

/** The setup of a screen with that depth; 15 gives that of a 16-bit screen with five bits a colour. */
ScreenSetup Screen_Of_Depth(int32_t bits);

/** Gives the windows a screen. Those made before keep their size and lose their pixels. */
void Screen_Set_Up(const ScreenSetup& setup);

/** Takes the screen away, and with it the file chooser and all messages still posted. */
void Screen_Remove();

/* ---- The desktop's own part ----------------------------------------------------------------------------------------------- */

/** What the layer calls, on the windows' thread unless a comment allows any; each function may be null. */
struct ScreenDesktop {
  void (*windowCreated)(HWND window);
  void (*windowChanged)(HWND window);  ///< Place, size, title, style or visibility.
  void (*pixelsChanged)(HWND window);
  void (*windowDestroyed)(HWND window);
  /** Turns the desktop's events into posted messages; waits up to that many milliseconds if there is none. */
  void (*pumpEvents)(uint32_t milliseconds);
  /** Asks a waiting pumpEvents to return. Any thread. */
  void (*wake)();
  /** Screen_Cursor tells which one is set. */
  void (*cursorChanged)() = nullptr;
  /** Shows a message box until it is closed. The texts are not null. */
  void (*showMessage)(HWND owner, const char* text, const char* caption, UINT type) = nullptr;
};
void Screen_Set_Desktop(const ScreenDesktop& desktop);

/** Answers GetOpenFileNameA, whose record it gets as the caller has filled it in: gives the chosen name, or nothing to decline.
 * It may run messages, as the user's dialog does. Without one, all are declined. */
using ScreenFileChooser = std::function<std::optional<std::string>(const OPENFILENAMEA& dialog)>;
void Screen_Set_File_Chooser(const ScreenFileChooser& chooser);

/* ---- What the user does to a window --------------------------------------------------------------------------------------- */

/* Keys and buttons are posted by PostMessageA, to the child that they are for and in its client coordinates. The functions here
 * do nothing for a window that is none. */

/** Gives the client area another size: pixels are new and black, and WM_SIZE and WM_PAINT are posted. */
void Screen_Resize_Client(HWND window, int32_t width, int32_t height);
/** Tells a top-level window where on the screen its client area lies now. Nothing is posted. */
void Screen_Move(HWND window, int32_t x, int32_t y);
/** Minimises or restores a window; posts WM_SIZE. */
void Screen_Minimise(HWND window, bool minimised);

/* ---- What is seen --------------------------------------------------------------------------------------------------------- */

/** A window as it is seen in its top-level one, in that one's client coordinates. */
struct ScreenPart {
  HWND window;
  RECT place;  ///< All of its client area,
  RECT seen;   ///< and what its parents leave of it; not empty.
};
/** A top-level window and all children that show, each above those before it. Empty while the window itself doesn't show. */
std::vector<ScreenPart> Screen_Parts(HWND top);

/** Copies part of a window's client area as 0xRRGGBB to rows that lie `pitch` bytes apart, if the window has pixels. On a screen
 * of 32 bits the words are copied as they are; their upper byte may hold anything. */
void Screen_Copy_Colors(HWND window, const RECT& part, uint32_t* to, ptrdiff_t pitch);

/** The number of the cursor set last, 0 for none. */
uintptr_t Screen_Cursor();
/** That cursor as a .cur file; empty for none and for the system's own. */
std::span<const uint8_t> Screen_Cursor_File();

/** Opens the tooltip of a window, with the text that it asks for, below the middle of the window but within that area of the
 * screen. Gives the tooltip, or null if the window has none or there is no text. */
HWND Screen_Open_Tooltip(HWND window, const RECT& area);
void Screen_Close_Tooltip(HWND tooltip);
bool Screen_Is_Tooltip(HWND window);
