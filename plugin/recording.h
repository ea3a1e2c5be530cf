/* Starting and stopping a recording of the stream in a file that the user chooses. decode/receive writes it. */
#pragma once

#include "decode/decoder.h"

/** Prepares the file dialog, which all instances share. */
void Record_Init_Dialog();

/** Asks the user for a file, with a name made of the local time as the default, and creates it. An existing file is replaced.
 *  Gives INVALID_HANDLE_VALUE if the user cancels, or, after a message, if the file can't be created. */
HANDLE Record_Ask_File(HWND window);

/** Ends the current recording, asks for a file, and records from the next frame start on. The lock is not held while the user is
 *  asked. Does nothing for a null argument. */
void Record_Start(HWND window, JdecDecoder* decoder);

/** Ends the recording, if there is one. Does nothing for a null argument. */
void Record_Stop(HWND window, JdecDecoder* decoder);

/** Closes the recording's file, which must be open. */
void Record_Close(JdecDecoder* decoder);
