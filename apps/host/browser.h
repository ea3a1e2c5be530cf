/* The browser as a plug-in library knows it: it loads the library by its name, gives it a table, and has instances with streams.
 * It makes no windows and no sources, and links nothing else of this project. All of it belongs to one thread, that of the
 * instances' windows. */
#pragma once

#include "plugin/npapi.h"
#include "resources/resources.h"
#include "velarto.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/* ---- The library ---------------------------------------------------------------------------------------------------------- */

/** The default file name; one file per platform. */
extern const char* const DefaultLibrary;
/** Loads a library from the system's search path; null, with one line in *error, on a failure. */
void* Library_Open(const char* name, std::string* error);
/** Gives the address of an export, null if there is none. */
void* Library_Find(void* library, const char* name);
void Library_Close(void* library);
/** Added to the error when the library does not know the windows of its program; may be empty. */
extern const char* const StrangeWindowHint;

/** A loaded library, and the tables exchanged with it. Both sides keep their addresses: the record must not move between
 * Plugin_Load and Plugin_Unload. */
struct Plugin {
  void* module = nullptr;
  NPNetscapeFuncs browser = {};  ///< The browser's functions; null for those it doesn't have.
  NPPluginFuncs functions = {};  ///< The library's functions.
  bool started = false;          ///< NP_Initialize has succeeded.
  decltype(&::NP_GetEntryPoints) getEntryPoints = nullptr;
  decltype(&::NP_Initialize) initialize = nullptr;
  decltype(&::NP_Shutdown) shutdown = nullptr;
};

/** Loads the library of that name, takes its table and starts it, as a browser with that version word (major number in the high
 * byte). False, with one line in *error that has the number of the failed step in it, and nothing is loaded then. */
bool Plugin_Load(const char* name, uint16_t versionWord, Plugin* plugin, std::string* error);

/** Stops and unloads the library; pages must have been closed. Does nothing for one that is not loaded. */
void Plugin_Unload(Plugin* plugin);

/* ---- Pages ---------------------------------------------------------------------------------------------------------------- */

/** A place in a page: an instance and its stream. It must not move between Page_Open and Page_Close. */
struct Page {
  Plugin* plugin = nullptr;
  NPInstance instance = {};  ///< pdata is null while there is no instance.
  NPStream stream = {};
  std::string url, type;  ///< Of the stream.
  bool streaming = false;
  bool endAsked = false;            ///< The plug-in has ended the stream; false again with the next one.
  int64_t delivered = 0;            ///< Bytes, of all streams.
  int64_t offset = 0;               ///< Bytes of this stream.
  int64_t heldBack = 0;             ///< How often nothing was taken.
  std::vector<std::string> wanted;  ///< URLs that the plug-in has asked for, oldest first; the reader takes them out.
};

/** Makes an instance. Gives NPP_New's result; on a failure the page stays closed. */
NPError Page_Open(Page* page, Plugin* plugin);

/** Gives the instance the window, with its current size; the caller still owns it. Gives NPP_SetWindow's result. */
NPError Page_Set_Window(Page* page, VelartoWindow window);

/** Starts a stream; one under way is ended as if by the user. Gives NPP_NewStream's result; on a failure nothing streams. */
NPError Page_New_Stream(Page* page, const char* type, const char* url);

/** Asks once how much may be written, and writes at most that. Gives the bytes taken; 0 when none are wanted now or there is no
 *  stream. If the plug-in refuses the bytes by a number below 0, the stream ends. */
int32_t Page_Deliver(Page* page, std::span<const uint8_t> bytes);

/** Ends the stream, if there is one. */
void Page_End_Stream(Page* page, NPReason reason);

/** Ends stream and instance, if there is one. */
void Page_Close(Page* page);
