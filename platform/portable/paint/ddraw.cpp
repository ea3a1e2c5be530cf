#include "platform/portable/paint/ddraw.h"

#include "platform/portable/paint/objects.h"
#include "platform/portable/paint/screen.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/monitor.h"
#include "platform/portable/window/window.h"

#include <algorithm>
#include <new>

namespace {

/** Makes an object with one reference. Gives an error code if the step fails or there is no memory; *out is null then. */
template <class Object>
HRESULT Make_Object(RigStep step, Object** out) {
  if (!out) return DDERR_INVALIDPARAMS;
  *out = nullptr;
  HRESULT code = E_FAIL;
  if (Step_Fails(step, &code)) return code;
  *out = new (std::nothrow) Object{};
  if (!*out) return DDERR_OUTOFMEMORY;
  (*out)->references = 1;
  Object_Made();
  return DD_OK;
}

template <class Object>
ULONG Release_Object(Object* object) {
  if (!object) return 0;
  const ULONG left = --object->references;
  if (left > 0) return left;
  delete object;
  Object_Ended();
  return 0;
}

struct EnumerateContext {
  LPDDENUMCALLBACKEXA callback;
  LPVOID context;
  int32_t count;  ///< Adapters so far.
};

/** Calls back for the adapter of one monitor. */
BOOL Enumerate_Adapter(HMONITOR monitor, HDC, RECT*, LPARAM data) {
  auto* enumeration = reinterpret_cast<EnumerateContext*>(data);
  GUID guid{static_cast<uint32_t>(enumeration->count), 0, 0, {}};
  char description[] = "Primary Display Driver", name[] = "display";
  const bool primary = enumeration->count++ == 0;
  return enumeration->callback(primary ? nullptr : &guid, description, name, enumeration->context, primary ? nullptr : monitor);
}

}  // namespace

HRESULT DirectDrawCreate(GUID*, IDirectDraw** ddraw, IUnknown*) {
  const HRESULT result = Make_Object(RigStep::DirectDrawCreate, ddraw);
  if (FAILED(result) || screenState.on) return result;
  IDirectDraw_Release(*ddraw);
  *ddraw = nullptr;
  return DDERR_NODIRECTDRAWHW;
}

HRESULT DirectDrawEnumerateA(LPDDENUMCALLBACKA callback, LPVOID context) {
  char description[] = "Primary Display Driver", name[] = "display";
  if (screenState.on) callback(nullptr, description, name, context);
  return DD_OK;
}

HRESULT DirectDrawEnumerateExA(LPDDENUMCALLBACKEXA callback, LPVOID context, DWORD flags) {
  EnumerateContext enumeration{callback, context, 0};
  if (!screenState.on) return DD_OK;
  if (flags & DDENUM_ATTACHEDSECONDARYDEVICES) {
    EnumDisplayMonitors(nullptr, nullptr, Enumerate_Adapter, reinterpret_cast<LPARAM>(&enumeration));
  } else {
    Enumerate_Adapter(nullptr, nullptr, nullptr, reinterpret_cast<LPARAM>(&enumeration));
  }
  return DD_OK;
}

HRESULT IDirectDraw_SetCooperativeLevel(IDirectDraw* ddraw, HWND, DWORD flags) {
  HRESULT code = E_FAIL;
  if (Step_Fails(RigStep::SetCooperativeLevel, &code)) return code;
  if (flags != DDSCL_NORMAL) return DDERR_INVALIDPARAMS;
  ddraw->leveled = true;
  return DD_OK;
}

HRESULT IDirectDraw_CreateClipper(IDirectDraw*, DWORD, IDirectDrawClipper** clipper, IUnknown*) {
  return Make_Object(RigStep::CreateClipper, clipper);
}

HRESULT IDirectDraw_CreatePalette(IDirectDraw* ddraw, DWORD flags, PALETTEENTRY* entries, IDirectDrawPalette** palette,
                                  IUnknown*) {
  if (!ddraw->leveled) return DDERR_NOCOOPERATIVELEVELSET;
  if (!(flags & DDPCAPS_8BIT) || !entries) return DDERR_INVALIDPARAMS;
  const HRESULT result = Make_Object(RigStep::CreatePalette, palette);
  if (FAILED(result)) return result;
  std::transform(entries, entries + 256, (*palette)->colors, Entry_Color);
  return DD_OK;
}

ULONG IDirectDraw_Release(IDirectDraw* ddraw) { return Release_Object(ddraw); }

HRESULT IDirectDrawClipper_SetHWnd(IDirectDrawClipper* clipper, DWORD, HWND window) {
  HRESULT code = E_FAIL;
  if (Step_Fails(RigStep::ClipperSetWindow, &code)) return code;
  if (!IsWindow(window)) return DDERR_INVALIDPARAMS;
  clipper->window = window;
  return DD_OK;
}

ULONG IDirectDrawClipper_Release(IDirectDrawClipper* clipper) { return Release_Object(clipper); }
ULONG IDirectDrawPalette_Release(IDirectDrawPalette* palette) { return Release_Object(palette); }
