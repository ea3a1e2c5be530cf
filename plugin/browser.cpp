#include "plugin/browser.h"

NPNetscapeFuncs* netscapeFuncs = nullptr;
NPPluginFuncs* pluginFuncs = nullptr;

/** From this minor version on, a browser can be asked to end a stream. */
static constexpr int32_t EndsStreams = 8;

NPError Browser_Get_URL(NPP instance, const char* url, const char* target) {
  if (!netscapeFuncs || !netscapeFuncs->geturl || !url || url[0] == 0) return NPERR_INVALID_FUNCTABLE_ERROR;
  return netscapeFuncs->geturl(instance, url, target);
}

NPError Browser_Destroy_Stream(NPP instance, NPStream* stream, NPReason reason) {
  if (!netscapeFuncs || (netscapeFuncs->version & 0xFF) < EndsStreams) return NPERR_INCOMPATIBLE_VERSION_ERROR;
  if (!netscapeFuncs->destroystream) return NPERR_INVALID_FUNCTABLE_ERROR;
  return netscapeFuncs->destroystream(instance, stream, reason);
}
