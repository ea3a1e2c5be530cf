/* A real desktop for the portable windows, by SDL2. Each top-level window is shown in a window of the desktop, pixel for pixel,
 * with its children in it.
 *
 * What the user does there reaches the portable window: a new place and size, keys as WM_KEYDOWN, mouse buttons, WM_SETCURSOR
 * when the pointer moves, the close button as WM_CLOSE, and being minimised. A part that is uncovered is shown again from the
 * pixels that the portable window keeps, without a WM_PAINT. The other way round go place, size, title, visibility, the cursor
 * and style: a window with WS_POPUP is shown on the full screen, or, if it is owned, without a border. Tooltips open where the
 * pointer rests; message boxes and questions for a file are asked.
 *
 * Pixels go to the desktop whenever messages are looked for, what has changed until then in one copy a window.
 *
 * The portable screen takes the size of the desktop. All of it belongs to the thread that started it. */
#pragma once

#include <string>

/** Sets the portable screen up with that depth (8, 15, 16, 24 or 32; 0: 32) and hooks the desktop in. False, with one line in
 * *error, when there is no desktop. */
bool Sdl_Desktop_Start(int bits, std::string* error);

/** Takes desktop and screen away; all windows must have been destroyed. */
void Sdl_Desktop_Stop();
