/* Portable windows in windows of SDL: one for each top-level window, with its children in it. */
#pragma once

#include "platform/portable/desktop.h"

#include <SDL.h>

/** A top-level window and the one that shows it. */
struct ShownWindow {
  HWND portable;
  SDL_Window* real;
  /** The client area on the screen when both windows last had the same: where the portable one differs, the SDL one is to follow.
   */
  RECT agreed;
  POINT frame = {};       ///< Width of the frame at the left and top, before the window filled the screen.
  bool wasFull = false;   ///< It filled the screen and has not been placed since.
  SDL_Rect changed = {};  ///< The part of the client area that has changed since it was shown last; may be empty.
};

/** Sets the hooks of the desktop that are about windows. */
void Windows_Hook_In(ScreenDesktop* desktop);

/** The record of that top-level window, or null. Valid until a window is created or destroyed. */
const ShownWindow* Shown_As(HWND portable);
/** The same by SDL's number of the window. */
const ShownWindow* Shown_By(uint32_t id);

/** The top-level window that a window, a child or a dialog's owner, lies in. */
HWND Top_Of(HWND window);
/** Where keys for a top-level window go: to the window itself, or if a dialog has disabled it, to that dialog. */
HWND Active_Window(HWND top);
/** Brings a window to the front. */
void Window_Raise(HWND top);

/** Has Show_Changes show all of a window's pixels again. */
void Mark_Changed(const ShownWindow& shown);
/** Shows what has changed since the last call, black where there are no pixels: one copy for each window, however many changes
 * there were. */
void Show_Changes();
/** Give the portable window the place or size that the user has given the SDL window. */
void Follow_Place(const ShownWindow& shown);
void Follow_Size(const ShownWindow& shown);
