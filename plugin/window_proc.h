/* The window of an instance. Once it is taken over, it repaints the picture, shows by cursor and tooltip whether a recording is
 * written, and opens the record menu. The mouse settings (plugin/attach) decide which of this is on. */
#pragma once

#include "decode/decoder.h"

/** Messages to the window: end the open stream, and ask the browser for its URL again. */
constexpr UINT EndStreamMessage = 1124, GetUrlMessage = 1125;
/** Values of WM_COMMAND. */
constexpr WPARAM StartRecordingCommand = 111, StopRecordingCommand = 112;

/** Replaces the procedure of the decoder's window, adds a tooltip, and asks the pump to take what is in the ring. If another live
 *  instance has taken over the same window, that is done already and only the pump is asked. Does nothing if the window is taken
 *  over for this decoder already. */
void Window_Take_Over(JdecDecoder* decoder);

/** Takes the pump's message out of the queue, and restores the window's own procedure if no other live instance has taken over
 * the window. Does nothing if it isn't taken over. */
void Window_Give_Back(JdecDecoder* decoder);

/** Shows the current picture again, if there is a display. The source rectangle becomes the window's client area in screen
 *  coordinates. */
void Window_Show_Again(JdecDecoder* decoder, HWND window);

/** The window procedure of a window that is taken over. */
LRESULT CALLBACK Plugin_Window_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
