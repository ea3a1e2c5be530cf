/* The window of an instance: taken over, it repaints the picture, tells by cursor and tooltip whether a recording runs, and opens
 * the record menu. How much of that is on, the settings of the mouse decide (plugin/attach). */
#pragma once

#include "decode/decoder.h"

/** Messages that end the open stream, and ask for its URL again. */
constexpr UINT EndStreamMessage = 1124, GetUrlMessage = 1125;
/** Window commands. */
constexpr WPARAM StartRecordingCommand = 111, StopRecordingCommand = 112;

/** Replaces the procedure of the decoder's window, gives the window a tooltip, and lets the pump run. Done once: nothing happens
 * when the window is taken over already. */
void Window_Take_Over(JdecDecoder* decoder);

/** Puts the window's own procedure back, if it was taken over. */
void Window_Give_Back(JdecDecoder* decoder);

/** Shows the current picture again, if there is a display; the source rectangle becomes the window's client area on the screen.
 */
void Show_Again(JdecDecoder* decoder, HWND window);

LRESULT CALLBACK Plugin_Window_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
