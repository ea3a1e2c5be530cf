/* The pump takes bytes from the ring to the decoder. It is a message that is posted to the instance's window when bytes have
 * come, so that the window's thread decodes them. */
#pragma once

#include "decode/decoder.h"
#include "plugin/npapi.h"

/** The number of the message, which is registered in the system: the window is the browser's, which has messages of its own. 0 if
 *  it can't be registered. */
UINT Pump_Message();

/** Posts the message, unless it is posted or being handled already, or without a window: the bytes stay in the ring. If it can't
 *  be posted, the next call tries again. */
void Pump_Ask(JdecDecoder* decoder);

/** Handles the message, if it is one that Pump_Ask has posted to that window: gives the ring's bytes to its instance's decoder
 *  until the ring is empty or the instance has ended. Does nothing in a recursive call. False for any other message. */
bool Pump_Handle(HWND window, UINT number, WPARAM wParam, LPARAM lParam);

/** Takes the decoder's message out of the queue of its window. Others of the same number stay. */
void Pump_Forget(JdecDecoder* decoder);
