/* The browser's tables, and what the plug-in asks the browser for. */
#pragma once

#include "plugin/npapi.h"

/** The browser's functions, from NP_Initialize to NP_Shutdown; otherwise null. */
extern NPNetscapeFuncs* netscapeFuncs;
/** The table that NP_GetEntryPoints filled last. It belongs to the browser. */
extern NPPluginFuncs* pluginFuncs;

/** Asks the browser for a URL. With a null target it is delivered to the instance as a stream. Gives the browser's result;
 *  NPERR_INVALID_FUNCTABLE_ERROR without a browser or a URL. */
NPError Browser_Get_URL(NPP instance, const char* url, const char* target);

/* In both calls the browser may call the plug-in, and end the instance. */

/** Asks the browser to end a stream. Gives its result; NPERR_INCOMPATIBLE_VERSION_ERROR without a browser or for one below minor
 *  version 8; NPERR_INVALID_FUNCTABLE_ERROR for one that has no such function. */
NPError Browser_Destroy_Stream(NPP instance, NPStream* stream, NPReason reason);
