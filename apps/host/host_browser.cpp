#include "apps/host/browser.h"

#include "platform/win32.h"

#include <algorithm>
#include <utility>

/** The mode of an instance: embedded in a page. */
static constexpr uint16_t EmbeddedMode = 1;
/** The kind of window: a handle of the system. */
static constexpr int32_t WindowOfTheSystem = 1;
static char streamType[] = MIME_TYPE_TEXT;

/* ---- What the plug-in may ask for ----------------------------------------------------------------------------------------- */

static Page* Page_Of(NPP instance) { return instance ? static_cast<Page*>(instance->ndata) : nullptr; }

static NPError NPN_Get_URL(NPP instance, const char* url, const char*) {
  Page* const page = Page_Of(instance);
  if (!page || !url) return NPERR_INVALID_INSTANCE_ERROR;
  page->wanted.emplace_back(url);
  return NPERR_NO_ERROR;
}

static NPError NPN_Destroy_Stream(NPP instance, NPStream* stream, NPReason reason) {
  Page* const page = Page_Of(instance);
  if (!page || !page->streaming || stream != &page->stream) return NPERR_INVALID_INSTANCE_ERROR;
  page->endAsked = true;
  Page_End_Stream(page, reason);
  return NPERR_NO_ERROR;
}

/* ---- The library ---------------------------------------------------------------------------------------------------------- */

template <class Function>
static bool Find_Entry(const Plugin& plugin, const char* name, Function* entry) {
  *entry = reinterpret_cast<Function>(Library_Find(plugin.module, name));
  return *entry != nullptr;
}

static bool Table_Complete(const NPPluginFuncs& functions) {
  return functions.newp && functions.destroy && functions.setwindow && functions.newstream && functions.destroystream &&
         functions.writeready && functions.write;
}

/** Starts the loaded library; gives what went wrong, or an empty text. */
static std::string Start(Plugin* plugin, uint16_t versionWord) {
  const char* const missing = !Find_Entry(*plugin, "NP_GetEntryPoints", &plugin->getEntryPoints) ? "NP_GetEntryPoints"
                              : !Find_Entry(*plugin, "NP_Initialize", &plugin->initialize)       ? "NP_Initialize"
                              : !Find_Entry(*plugin, "NP_Shutdown", &plugin->shutdown)           ? "NP_Shutdown"
                                                                                                 : nullptr;
  if (missing) return std::string("is no plug-in: it has no ") + missing;
  plugin->functions.size = sizeof plugin->functions;
  NPError result = plugin->getEntryPoints(&plugin->functions);
  if (result != NPERR_NO_ERROR) return "has no functions: NP_GetEntryPoints gives " + std::to_string(result);
  if (!Table_Complete(plugin->functions)) return "has an incomplete table of functions";
  plugin->browser.size = sizeof plugin->browser;
  plugin->browser.version = versionWord;
  plugin->browser.geturl = NPN_Get_URL;
  plugin->browser.destroystream = NPN_Destroy_Stream;
  result = plugin->initialize(&plugin->browser);
  if (result != NPERR_NO_ERROR) return "does not start for this browser: NP_Initialize gives " + std::to_string(result);
  plugin->started = true;
  return "";
}

bool Plugin_Load(const char* name, uint16_t versionWord, Plugin* plugin, std::string* error) {
  *plugin = {};
  plugin->module = Library_Open(name, error);
  if (!plugin->module) return false;
  const std::string failure = Start(plugin, versionWord);
  if (failure.empty()) return true;
  *error = std::string(name) + " " + failure;
  Plugin_Unload(plugin);
  return false;
}

void Plugin_Unload(Plugin* plugin) {
  if (plugin->started) plugin->shutdown();
  if (plugin->module) Library_Close(plugin->module);
  *plugin = {};
}

/* ---- Pages ---------------------------------------------------------------------------------------------------------------- */

NPError Page_Open(Page* page, Plugin* plugin) {
  *page = {};
  page->plugin = plugin;
  page->instance.ndata = page;
  const NPError result = plugin->functions.newp(streamType, &page->instance, EmbeddedMode, 0, nullptr, nullptr, nullptr);
  if (result != NPERR_NO_ERROR) *page = {};
  return result;
}

NPError Page_Set_Window(Page* page, VelartoWindow window) {
  if (!page->plugin) return NPERR_INVALID_INSTANCE_ERROR;
  RECT client = {};
  if (window) GetClientRect(window, &client);
  NPWindow place = {};
  place.window = window;
  place.width = static_cast<uint32_t>(client.right);
  place.height = static_cast<uint32_t>(client.bottom);
  place.clipRect.bottom = static_cast<uint16_t>(client.bottom);
  place.clipRect.right = static_cast<uint16_t>(client.right);
  place.type = WindowOfTheSystem;
  return page->plugin->functions.setwindow(&page->instance, &place);
}

NPError Page_New_Stream(Page* page, const char* type, const char* url) {
  if (!page->plugin) return NPERR_INVALID_INSTANCE_ERROR;
  Page_End_Stream(page, NPRES_USER_BREAK);
  page->type = type;
  page->url = url;
  page->stream = {};
  page->stream.ndata = page;
  page->stream.url = page->url.c_str();
  page->endAsked = false;
  page->offset = 0;
  uint16_t mode = 0;  // Left at 0 by the plug-in: bytes are delivered in order.
  const NPError result = page->plugin->functions.newstream(&page->instance, page->type.data(), &page->stream, 0, &mode);
  page->streaming = result == NPERR_NO_ERROR;
  return result;
}

int32_t Page_Deliver(Page* page, std::span<const uint8_t> bytes) {
  if (!page->streaming || bytes.empty()) return 0;
  const NPPluginFuncs& functions = page->plugin->functions;
  const int32_t offered = functions.writeready(&page->instance, &page->stream);
  if (!page->streaming) return 0;
  int32_t taken = 0;
  if (offered > 0) {
    const auto length = static_cast<int32_t>(std::min<size_t>(bytes.size(), static_cast<size_t>(offered)));
    // Past 2 GiB the offset wraps; a plug-in that reads the stream in order doesn't need it.
    taken = functions.write(&page->instance, &page->stream, static_cast<int32_t>(page->offset), length,
                            const_cast<uint8_t*>(bytes.data()));
    if (taken < 0) Page_End_Stream(page, NPRES_NETWORK_ERR);
    taken = std::clamp(taken, 0, length);
  }
  page->heldBack += taken == 0;
  page->offset += taken;
  page->delivered += taken;
  return taken;
}

void Page_End_Stream(Page* page, NPReason reason) {
  if (!std::exchange(page->streaming, false)) return;
  page->plugin->functions.destroystream(&page->instance, &page->stream, reason);
}

void Page_Close(Page* page) {
  if (!page->plugin) return;
  Page_End_Stream(page, NPRES_USER_BREAK);
  NPSavedData* saved = nullptr;  // Nothing is kept for a next visit.
  page->plugin->functions.destroy(&page->instance, &saved);
  page->plugin = nullptr;
  page->instance = {};
}
