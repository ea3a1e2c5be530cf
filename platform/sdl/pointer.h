/* The mouse pointer over portable windows: buttons, the cursor, and tooltips where it rests. */
#pragma once

#include "platform/sdl/shown_windows.h"

/** Posts a button to the child under the pointer, and its release to the window that got the press, both in client coordinates.
 * In a window that a dialog has disabled it raises the dialog. */
void Pointer_Button(const ShownWindow& shown, const SDL_MouseButtonEvent& event);
/** Sends WM_SETCURSOR; a window that doesn't handle it gets the arrow. */
void Pointer_Moved(const ShownWindow& shown, const SDL_MouseMotionEvent& event);
/** The user does something else, or the pointer has left the windows: no tooltip until it moves again. */
void Pointer_Ignored();

/** Opens or closes the tooltip when it is time; gives the milliseconds until the next time, UINT32_MAX if there is none. */
uint32_t Pointer_Rests();

/** Shows the cursor that was set. */
void Pointer_Show_Cursor();
/** Frees the cursors. */
void Pointer_Stop();
