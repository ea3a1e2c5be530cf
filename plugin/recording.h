/* Saving the stream to a file that the user picks. What is written, and when, is in decode/receive. */
#pragma once

#include "decode/decoder.h"

/** Prepares the file dialog, which all instances share. */
void Record_Init_Dialog();

/** Asks the user for a file, proposing a name made of the time, and creates it; one that is there already is replaced. Gives
 *  INVALID_HANDLE_VALUE when the user declines, or, after telling so, when it can't be created. */
HANDLE Record_Ask_File(HWND window);

/** Ends a recording under way, asks for a file and waits from then on for the next frame start. The lock is free while the user
 * is asked. A null argument does nothing, here and in the next one. */
void Record_Start(HWND window, JdecDecoder* decoder);

/** Ends the recording, if there is one. */
void Record_Stop(HWND window, JdecDecoder* decoder);

/** Closes the file, which must be open. */
void Record_Close(JdecDecoder* decoder);
