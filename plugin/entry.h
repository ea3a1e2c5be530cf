/* The plug-in's entry points: the exports NP_* (velarto.h) and the functions of the table that NP_GetEntryPoints fills. */
#pragma once

#include "plugin/npapi.h"

#include "platform/win32.h"

/** Cursors of the plug-in's window, loaded by NP_Initialize: the normal one, and that while a recording is written. */
extern HCURSOR cursorNormal, cursorRecording;

/* Functions of the table. For an instance that isn't live, which NPP_New hasn't made or NPP_Destroy has ended, they touch nothing
 * and give NPERR_INVALID_INSTANCE_ERROR, and those that give a number of bytes 0. */

/** Makes the instance's decoder, of 320 by 240. NPERR_INVALID_INSTANCE_ERROR for null and for a live instance;
 *  NPERR_OUT_OF_MEMORY_ERROR, with a null pdata, without memory. */
NPError NPP_New(NPMIMEType type, NPP instance, uint16_t mode, int16_t argc, char* argn[], char* argv[], NPSavedData* saved);
/** Ends a recording, takes the pump's message out of the queue, restores the window's procedure, frees the decoder. Gives
 *  NPERR_NO_ERROR for null. */
NPError NPP_Destroy(NPP instance, NPSavedData** save);
/** Takes over the first window that is given: makes a display, replaces the window's procedure, adds a tooltip. Every call shows
 *  the picture again. Does nothing without a window handle. Gives NPERR_MODULE_LOAD_FAILED_ERROR if the display can't be made,
 *  after which the next call tries again, or while it is being made; NPERR_INVALID_INSTANCE_ERROR if the instance ends in the
 *  meantime. */
NPError NPP_SetWindow(NPP instance, NPWindow* window);
/** Stores the stream, and its URL if the type contains "video". A URL of 1024 bytes or more is stored as an empty one. */
NPError NPP_NewStream(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable, uint16_t* streamType);
/** Clears the stream. If there is no window yet and the reason is not a network error, asks the browser for its URL again. */
NPError NPP_DestroyStream(NPP instance, NPStream* stream, NPReason reason);
/** Gives the bytes that NPP_Write would take now, at most 8192, and asks the pump again if there are bytes in the ring. May wait
 *  first (JDEC_query_decode_buffer_count). */
int32_t NPP_WriteReady(NPP instance, NPStream* stream);
/** Writes bytes to the decoder's ring and asks the pump to take them to the decoder. Gives the number of bytes written. */
int32_t NPP_Write(NPP instance, NPStream* stream, int32_t offset, int32_t length, void* buffer);
