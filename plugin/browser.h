/* The browser as the plug-in sees it. */
#pragma once

#include "plugin/npapi.h"

/** The browser's table; null outside of NP_Initialize and NP_Shutdown. */
extern NPNetscapeFuncs* netscapeFuncs;
/** The table that NP_GetEntryPoints filled last, the browser's. */
extern NPPluginFuncs* pluginFuncs;

/** Asks the browser to start a stream for the URL into the instance; a null target. Gives the browser's result; without a
 * browser, or an empty URL, an error. */
NPError Browser_Get_URL(NPP instance, const char* url, const char* target);

/** Asks the browser to end a stream. Browsers below minor version 8 can't: gives NPERR_INCOMPATIBLE_VERSION_ERROR. */
NPError Browser_Destroy_Stream(NPP instance, NPStream* stream, NPReason reason);
