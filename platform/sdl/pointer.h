/* The pointer over portable windows: buttons, the cursor, and tooltips where it rests. */
#pragma once

#include "platform/sdl/shown_windows.h"

/** Buttons go to the child under the pointer, and the release to the window that got the press, both in client coordinates; the
 * window that a dialog holds up brings the dialog to the front. */
void Pointer_Button(const ShownWindow& shown, const SDL_MouseButtonEvent& event);
/** Sends WM_SETCURSOR; a window that doesn't handle it gets the arrow. */
void Pointer_Moved(const ShownWindow& shown, const SDL_MouseMotionEvent& event);
/** The user is busy otherwise, or the pointer has left the windows: no tooltip until it moves again. */
void Pointer_Ignored();

/** Opens or closes the tooltip whose time has come; gives the milliseconds until the next time, UINT32_MAX if none is to come. */
uint32_t Pointer_Rests();

/** Shows the cursor that was set. */
void Pointer_Show_Cursor();
/** Gives the cursors back. */
void Pointer_Stop();
