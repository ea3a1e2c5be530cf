/* The records of the browser's plug-in interface, as far as they are used here. Layouts and numbers are the browser's. All
 * functions are __cdecl. */
#pragma once

#include <cstdint>

/** Results of the plug-in's functions. */
using NPError = int16_t;
constexpr NPError NPERR_NO_ERROR = 0, NPERR_INVALID_INSTANCE_ERROR = 2, NPERR_INVALID_FUNCTABLE_ERROR = 3,
                  NPERR_MODULE_LOAD_FAILED_ERROR = 4, NPERR_OUT_OF_MEMORY_ERROR = 5, NPERR_INCOMPATIBLE_VERSION_ERROR = 8;

/** Why a stream ended. */
using NPReason = int16_t;
constexpr NPReason NPRES_DONE = 0, NPRES_NETWORK_ERR = 1, NPRES_USER_BREAK = 2;

using NPMIMEType = char*;
using NPBool = uint8_t;

/** An instance of the plug-in in a page. pdata is the plug-in's, ndata the browser's. */
struct NPInstance {
  void* pdata;
  void* ndata;
};
using NPP = NPInstance*;

struct NPStream {
  void* pdata;
  void* ndata;
  const char* url;
  uint32_t end;  ///< Bytes of the stream, 0 if not known.
  uint32_t lastmodified;
  void* notifyData;
};

struct NPRect {
  uint16_t top, left, bottom, right;
};

struct NPWindow {
  void* window;  ///< The system's window handle.
  int32_t x, y;
  uint32_t width, height;
  NPRect clipRect;
  int32_t type;
};

struct NPSavedData {
  int32_t len;
  void* buf;
};

/** The plug-in's functions. `size` is set by the browser: the bytes that its table has room for. */
struct NPPluginFuncs {
  uint16_t size;
  uint16_t version;
  NPError (*newp)(NPMIMEType type, NPP instance, uint16_t mode, int16_t argc, char* argn[], char* argv[], NPSavedData* saved);
  NPError (*destroy)(NPP instance, NPSavedData** save);
  NPError (*setwindow)(NPP instance, NPWindow* window);
  NPError (*newstream)(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable, uint16_t* streamType);
  NPError (*destroystream)(NPP instance, NPStream* stream, NPReason reason);
  void (*asfile)();
  int32_t (*writeready)(NPP instance, NPStream* stream);
  int32_t (*write)(NPP instance, NPStream* stream, int32_t offset, int32_t length, void* buffer);
  void (*print)();
  int16_t (*event)(NPP instance, void* event);
  void (*urlnotify)();
  void* javaClass;
};

/** The browser's functions, of which the first six are declared. `version` has the major number in its high byte and the minor
 *  number in its low byte. */
struct NPNetscapeFuncs {
  uint16_t size;
  uint16_t version;
  NPError (*geturl)(NPP instance, const char* url, const char* target);
  void (*posturl)();
  void (*requestread)();
  void (*newstream)();
  void (*write)();
  NPError (*destroystream)(NPP instance, NPStream* stream, NPReason reason);
};
