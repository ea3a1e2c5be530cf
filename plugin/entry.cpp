#include "plugin/entry.h"

#include "pixel/arena.h"
#include "plugin/attach.h"
#include "plugin/browser.h"
#include "plugin/instances.h"
#include "plugin/pump.h"
#include "plugin/recording.h"
#include "plugin/window_proc.h"
#include "resources/resources.h"

#include <algorithm>
#include <cstring>

HCURSOR cursorNormal = nullptr, cursorRecording = nullptr;

namespace {

constexpr int32_t StartWidth = 320, StartHeight = 240;
/** Most bytes that the browser is asked for at once. */
constexpr int32_t MostOffered = 8192;
/** The version of the plug-in interface that the plug-in has. */
constexpr uint16_t InterfaceVersion = 9;
/** Minor versions of the browser: from the first on it has URL notification, from the second on the mouse settings are off. */
constexpr int32_t NotifyingVersion = 9, PlainMouseVersion = 12;

void Do_Nothing() {}

/** The decoder of a live instance. Null for any other: its pdata, if there still is one, may point to a freed decoder. */
JdecDecoder* Live_Decoder(NPP instance) { return Instance_Lives(instance) ? Instance_Decoder(instance) : nullptr; }

/** Copies the URL to urlBuffer; empties it for a null URL or one that doesn't fit. */
void Store_URL(JdecDecoder* decoder, const char* url) {
  const size_t length = url ? strnlen(url, UrlSize) : UrlSize;
  if (length < UrlSize) {
    std::memcpy(decoder->urlBuffer, url, length + 1);
  } else {
    decoder->urlBuffer[0] = 0;
  }
}

/** Whether a call of NPP_SetWindow further out is making the display: the window is set, but not yet taken over. */
bool Display_Under_Way(const JdecDecoder* decoder) { return decoder->window && !decoder->display && !decoder->prevWndProc; }

}  // namespace

/* ---- Exports -------------------------------------------------------------------------------------------------------------- */

int16_t VELARTO_STDCALL NP_GetEntryPoints(NPPluginFuncs* table) {
  if (!table) return NPERR_INVALID_FUNCTABLE_ERROR;
  pluginFuncs = table;
  // Field by field: the table of an older browser has no room for the last field.
  table->version = InterfaceVersion;
  table->newp = NPP_New;
  table->destroy = NPP_Destroy;
  table->setwindow = NPP_SetWindow;
  table->newstream = NPP_NewStream;
  table->destroystream = NPP_DestroyStream;
  table->asfile = Do_Nothing;
  table->writeready = NPP_WriteReady;
  table->write = NPP_Write;
  table->print = Do_Nothing;
  table->event = nullptr;
  table->urlnotify = Do_Nothing;
  return NPERR_NO_ERROR;
}

int16_t VELARTO_STDCALL NP_Initialize(NPNetscapeFuncs* table) {
  if (!table) return NPERR_INVALID_FUNCTABLE_ERROR;
  netscapeFuncs = table;
  if (table->version >> 8 > 0) return NPERR_INCOMPATIBLE_VERSION_ERROR;
  const int32_t minor = table->version & 0xFF;
  if (minor >= NotifyingVersion && pluginFuncs) {
    pluginFuncs->urlnotify = Do_Nothing;
    pluginFuncs->javaClass = nullptr;
  }
  if (minor >= PlainMouseVersion) mouseLButton = mouseRButton = 0;
  cursorNormal = LoadCursorA(moduleHandle, MAKEINTRESOURCEA(CursorNormalId));
  cursorRecording = LoadCursorA(moduleHandle, MAKEINTRESOURCEA(CursorRecordingId));
  if (!JDEC_Init()) return NPERR_MODULE_LOAD_FAILED_ERROR;
  Clear_Instances();
  return NPERR_NO_ERROR;
}

int16_t VELARTO_STDCALL NP_Shutdown(void) {
  instanceHighWater = 0;
  JDEC_Exit();
  netscapeFuncs = nullptr;
  return NPERR_NO_ERROR;
}

/* ---- Instances ------------------------------------------------------------------------------------------------------------ */

NPError NPP_New(NPMIMEType, NPP instance, uint16_t, int16_t, char*[], char*[], NPSavedData*) {
  if (!instance || Instance_Lives(instance)) return NPERR_INVALID_INSTANCE_ERROR;
  JdecDecoder* const decoder = JDEC_New(StartWidth, StartHeight);
  auto* const url = static_cast<char*>(Arena_Alloc_Zeroed(UrlSize));
  instance->pdata = decoder;
  if (!decoder || !url) {
    JDEC_Free(decoder);
    Arena_Free(url);
    instance->pdata = nullptr;
    return NPERR_OUT_OF_MEMORY_ERROR;
  }
  decoder->urlBuffer = url;
  decoder->npInstance = instance;
  Add_Instance(instance);
  return NPERR_NO_ERROR;
}

NPError NPP_Destroy(NPP instance, NPSavedData**) {
  if (!instance) return NPERR_NO_ERROR;
  JdecDecoder* const decoder = Live_Decoder(instance);
  if (!decoder) return NPERR_INVALID_INSTANCE_ERROR;
  // First: looking through the queue can let other programs' messages in, and with them calls of the browser.
  Remove_Instance(instance);
  Record_Stop(decoder->window, decoder);
  Window_Give_Back(decoder);
  Arena_Free(decoder->urlBuffer);
  decoder->urlBuffer = nullptr;
  End_Decoder(decoder);
  return NPERR_NO_ERROR;
}

NPError NPP_SetWindow(NPP instance, NPWindow* window) {
  JdecDecoder* const decoder = Live_Decoder(instance);
  if (!decoder) return NPERR_INVALID_INSTANCE_ERROR;
  const auto handle = window ? static_cast<HWND>(window->window) : nullptr;
  if (!handle) return NPERR_NO_ERROR;
  // A display that can't be made shows a message box, in which the browser may call again, and end the instance.
  DecoderHold hold(decoder);
  if (!decoder->window) {
    decoder->window = handle;
    const bool shown = JDEC_Draw_Init(decoder, handle) != 0;
    if (!shown) decoder->window = nullptr;
    if (hold.ended) return NPERR_INVALID_INSTANCE_ERROR;
    if (!shown) return NPERR_MODULE_LOAD_FAILED_ERROR;
  } else if (Display_Under_Way(decoder)) {
    return NPERR_MODULE_LOAD_FAILED_ERROR;
  }
  Window_Take_Over(decoder);
  Window_Show_Again(decoder, handle);
  return NPERR_NO_ERROR;
}

/* ---- Streams -------------------------------------------------------------------------------------------------------------- */

NPError NPP_NewStream(NPP instance, NPMIMEType type, NPStream* stream, NPBool, uint16_t*) {
  JdecDecoder* const decoder = Live_Decoder(instance);
  if (!decoder) return NPERR_INVALID_INSTANCE_ERROR;
  if (type && std::strstr(type, "video")) Store_URL(decoder, stream ? stream->url : nullptr);
  decoder->streamState = 1;
  decoder->npStream = stream;
  return NPERR_NO_ERROR;
}

NPError NPP_DestroyStream(NPP instance, NPStream* stream, NPReason reason) {
  JdecDecoder* const decoder = Live_Decoder(instance);
  if (!decoder) return NPERR_INVALID_INSTANCE_ERROR;
  const bool again = !decoder->window && reason != NPRES_NETWORK_ERR && stream;
  decoder->npStream = nullptr;
  decoder->streamState = 0;
  // Last: the browser may start the new stream at once, or end the instance.
  if (again) Browser_Get_URL(instance, stream->url, nullptr);
  return NPERR_NO_ERROR;
}

int32_t NPP_WriteReady(NPP instance, NPStream*) {
  JdecDecoder* const decoder = Live_Decoder(instance);
  if (!decoder) return 0;
  const int32_t free = JDEC_query_decode_buffer_count(decoder);
  // The message may have failed to be posted, and while the ring is full NPP_Write isn't called.
  if (free < StreamBufferSize) Pump_Ask(decoder);
  return std::min(free, MostOffered);
}

int32_t NPP_Write(NPP instance, NPStream*, int32_t, int32_t length, void* buffer) {
  JdecDecoder* const decoder = Live_Decoder(instance);
  if (!decoder) return 0;
  const int32_t taken = JDEC_write_decode_buffer(decoder, static_cast<const uint8_t*>(buffer), length);
  Pump_Ask(decoder);
  return taken;
}
