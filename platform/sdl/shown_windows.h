/* Portable windows in windows of the desktop: one for each top-level window, in which its children are seen as well. */
#pragma once

#include "platform/portable/desktop.h"

#include <SDL.h>

/** A top-level window and the one that shows it. */
struct ShownWindow {
  HWND portable;
  SDL_Window* real;
  /** Where the client area lay on the screen when the two agreed last: what differs from it is the portable one's wish. */
  RECT agreed;
  POINT frame = {};       ///< Left of and above the client area, before the window filled the screen.
  bool wasFull = false;   ///< It has not been placed again since.
  SDL_Rect changed = {};  ///< What has changed since it was shown last, in the client area; empty for nothing.
};

/** Puts windows into the hooks of the desktop. */
void Windows_Hook_In(ScreenDesktop* desktop);

/** The one that shows that top-level window, or null. Until a window is made or destroyed. */
const ShownWindow* Shown_As(HWND portable);
/** The one of that number of SDL, or null; as long. */
const ShownWindow* Shown_By(uint32_t id);

/** The top-level window that a window, a child or a dialog's owner, lies in. */
HWND Top_Of(HWND window);
/** Where keys to a top-level window go: the window itself, or when a dialog holds it up, that dialog. */
HWND Active_Window(HWND top);
/** Brings a window to the front. */
void Window_Raise(HWND top);

/** Has all pixels of a window shown anew, by Show_Changes. */
void Mark_Changed(const ShownWindow& shown);
/** Brings what has changed since the last call to the desktop, which is black where there are no pixels: one copy a window,
 * however many changes there were. */
void Show_Changes();
/** The portable window takes the place or size that the user has given the real one. */
void Follow_Place(const ShownWindow& shown);
void Follow_Size(const ShownWindow& shown);
