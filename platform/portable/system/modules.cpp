/* The functions that are looked up by name at run time. */
#include "platform/portable/paint/ddraw.h"
#include "platform/portable/system/kernel.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/monitor.h"
#include "platform/portable/window/window.h"

#include <cstring>
#include <strings.h>

struct HINSTANCE__ {
  const char* name;
};

namespace {

HINSTANCE__ ddrawModule{"ddraw"}, userModule{"user32"}, ownModule{"velarto"};

struct NamedFunction {
  HMODULE module;
  const char* name;
  FARPROC function;
};

/** Callers know the true type and cast back to it. */
template <class Function>
FARPROC As_Procedure(Function* function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

const NamedFunction namedFunctions[] = {
    {&ddrawModule, "DirectDrawEnumerateExA", As_Procedure(DirectDrawEnumerateExA)},
    {&userModule, "GetSystemMetrics", As_Procedure(GetSystemMetrics)},
    {&userModule, "MonitorFromWindow", As_Procedure(MonitorFromWindow)},
    {&userModule, "MonitorFromRect", As_Procedure(MonitorFromRect)},
    {&userModule, "MonitorFromPoint", As_Procedure(MonitorFromPoint)},
    {&userModule, "EnumDisplayMonitors", As_Procedure(EnumDisplayMonitors)},
    {&userModule, "GetMonitorInfoA", As_Procedure(GetMonitorInfoA)},
    {&userModule, "EnumDisplayDevicesA", As_Procedure(EnumDisplayDevicesA)},
};

bool Module_Named(HMODULE module, const char* name) {
  const size_t length = std::strlen(module->name);
  if (strncasecmp(name, module->name, length) != 0) return false;
  return name[length] == 0 || strcasecmp(name + length, ".dll") == 0;
}

}  // namespace

HMODULE GetModuleHandleA(LPCSTR name) {
  if (!name) return nullptr;
  if (Module_Named(&userModule, name)) return &userModule;
  return Module_Named(&ddrawModule, name) ? &ddrawModule : nullptr;
}

HMODULE LoadLibraryA(LPCSTR name) {
  HMODULE module = GetModuleHandleA(name);
  if (module == &ddrawModule && Step_Fails(RigStep::LoadDirectDraw)) return nullptr;
  return module;
}

BOOL GetModuleHandleExA(DWORD, LPCSTR, HMODULE* module) {
  *module = &ownModule;
  return TRUE;
}

BOOL FreeLibrary(HMODULE module) { return module != nullptr; }

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
  for (const NamedFunction& entry : namedFunctions) {
    if (entry.module != module || std::strcmp(entry.name, name) != 0) continue;
    if (module == &ddrawModule && Step_Fails(RigStep::FindEnumerateEx)) return nullptr;
    if (std::strcmp(name, "GetMonitorInfoA") == 0 && Step_Fails(RigStep::FindMonitorFunction)) return nullptr;
    return entry.function;
  }
  return nullptr;
}
