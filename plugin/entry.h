/* The plug-in's entries: the exports NP_* (velarto.h) and the functions of the table that they hand out. */
#pragma once

#include "plugin/npapi.h"

#include "platform/win32.h"

/** Cursors of the plug-in's window, loaded by NP_Initialize: as usual, and while a recording is written. */
extern HCURSOR cursorNormal, cursorRecording;

/* Functions of the table. With a null instance they give NPERR_INVALID_INSTANCE_ERROR, or 0 where they give a count. */

/** Makes the instance's decoder, of 320 by 240. NPERR_OUT_OF_MEMORY_ERROR, with a null pdata, when memory can't be had. */
NPError NPP_New(NPMIMEType type, NPP instance, uint16_t mode, int16_t argc, char* argn[], char* argv[], NPSavedData* saved);
/** Ends a recording, gives the window back, frees the decoder. */
NPError NPP_Destroy(NPP instance, NPSavedData** save);
/** Adopts the first window given: display, window procedure, tooltip. Shows the picture again each time. A window without a
 * handle does nothing; NPERR_MODULE_LOAD_FAILED_ERROR when nothing can be shown in it, and the next call tries again. */
NPError NPP_SetWindow(NPP instance, NPWindow* window);
/** Notes the stream, and its URL if the type has "video" in it; of a URL of 1024 bytes or more nothing is kept. */
NPError NPP_NewStream(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable, uint16_t* streamType);
/** Forgets the stream. One that ended, but not by a network error, before there was a window is asked for again. */
NPError NPP_DestroyStream(NPP instance, NPStream* stream, NPReason reason);
/** Bytes that NPP_Write would take now, 8192 at most. May hold the caller up (JDEC_query_decode_buffer_count). */
int32_t NPP_WriteReady(NPP instance, NPStream* stream);
/** Puts bytes into the decoder's ring and has the window pump them to the decoder. Gives how many were taken. */
int32_t NPP_Write(NPP instance, NPStream* stream, int32_t offset, int32_t length, void* buffer);
