/* The browser as a plug-in library knows it: it loads the library by its name, hands it a table, and has instances with streams.
 * No window and no source is made here, and of the house nothing else is linked. All of it belongs to one thread, that of the
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

/** The library's file, loaded; one file a home. */
extern const char* const DefaultLibrary;
/** Loads a library, which the system looks for where its programs do; null, with one line in *error, when it can't be had. */
void* Library_Open(const char* name, std::string* error);
/** Gives the address of an export, null if there is none. */
void* Library_Find(void* library, const char* name);
void Library_Close(void* library);
/** What to tell when the library does not know the windows of its program; may be empty. */
extern const char* const StrangeWindowHint;

/** A library at work, and the tables exchanged with it: both sides keep their addresses, so the record stays where it is from
 * Plugin_Load to Plugin_Unload. */
struct Plugin {
  void* module = nullptr;
  NPNetscapeFuncs browser = {};  ///< What it was handed; null where this browser has nothing to offer.
  NPPluginFuncs functions = {};  ///< What it has filled in.
  bool started = false;          ///< NP_Initialize has been called, and went well.
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

/** A place in a page: an instance and its stream. It stays where it is from Page_Open to Page_Close. */
struct Page {
  Plugin* plugin = nullptr;
  NPInstance instance = {};  ///< pdata is null while there is no instance.
  NPStream stream = {};
  std::string url, type;  ///< Of the stream.
  bool streaming = false;
  bool endAsked = false;            ///< The plug-in has ended the stream; false again with the next one.
  int64_t delivered = 0;            ///< Bytes, of all streams.
  int64_t offset = 0;               ///< Of them, those of this stream.
  int64_t heldBack = 0;             ///< How often nothing was taken.
  std::vector<std::string> wanted;  ///< URLs that the plug-in has asked for, oldest first; the reader takes them out.
};

/** Makes an instance. Gives NPP_New's result; on a failure the page stays closed. */
NPError Page_Open(Page* page, Plugin* plugin);

/** Hands the instance the window, with its size of now; the window stays the caller's. Gives NPP_SetWindow's result. */
NPError Page_Set_Window(Page* page, VelartoWindow window);

/** Starts a stream; one under way is ended as if by the user. Gives NPP_NewStream's result; on a failure nothing streams. */
NPError Page_New_Stream(Page* page, const char* type, const char* url);

/** Asks once how much may be written, and writes at most that. Gives the bytes taken; 0 when they are held back, or nothing
 *  streams. A plug-in that refuses the bytes, by a number below 0, ends its stream. */
int32_t Page_Deliver(Page* page, std::span<const uint8_t> bytes);

/** Ends the stream, if there is one. */
void Page_End_Stream(Page* page, NPReason reason);

/** Ends stream and instance, if there is one. */
void Page_Close(Page* page);
