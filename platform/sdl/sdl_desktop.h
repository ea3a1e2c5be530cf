/* A desktop for the portable windows, by SDL2. Each top-level window is shown in a window of SDL, pixel for pixel, with its
 * children in it.
 *
 * What the user does there reaches the portable window: a new place and size, keys as WM_KEYDOWN, mouse buttons, WM_SETCURSOR
 * when the pointer moves, the close button as WM_CLOSE, and minimising. A part that is uncovered is shown again from the portable
 * window's pixels, without a WM_PAINT. The SDL window follows the portable one in place, size, title, visibility, cursor and
 * style: a window with WS_POPUP is shown on the full screen, or, if it is owned, without a border. Tooltips open where the
 * pointer rests; message boxes and file dialogs are shown.
 *
 * Whenever a program looks for messages, the pixels that have changed are shown, in one copy for each window.
 *
 * The portable screen has the size of the desktop. All of it belongs to the thread that started it. */
#pragma once

#include <string>

/** Sets the portable screen up with that depth (8, 15, 16, 24 or 32; 0: 32) and hooks the desktop in. False, with one line in
 * *error, when there is no desktop. */
bool Sdl_Desktop_Start(int bits, std::string* error);

/** Ends desktop and screen; all windows must have been destroyed. */
void Sdl_Desktop_Stop();
