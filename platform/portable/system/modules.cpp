/* The functions that are looked up by name at run time. */
#include "platform/portable/paint/ddraw.h"
#include "platform/portable/system/kernel.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/monitor.h"
#include "platform/portable/window/window.h"

#include <cstring>
#include <optional>
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
  std::optional<RigStep> step = std::nullopt;  ///< By which a test makes it missing.
};

/** Callers know the true type and cast back to it. */
template <class Function>
FARPROC As_Procedure(Function* function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

const NamedFunction namedFunctions[] = {
    {&ddrawModule, "DirectDrawCreate", As_Procedure(DirectDrawCreate), RigStep::FindDirectDrawCreate},
    {&ddrawModule, "DirectDrawEnumerateA", As_Procedure(DirectDrawEnumerateA), RigStep::FindEnumerate},
    {&ddrawModule, "DirectDrawEnumerateExA", As_Procedure(DirectDrawEnumerateExA), RigStep::FindEnumerateEx},
    {&userModule, "GetSystemMetrics", As_Procedure(GetSystemMetrics)},
    {&userModule, "MonitorFromWindow", As_Procedure(MonitorFromWindow)},
    {&userModule, "MonitorFromRect", As_Procedure(MonitorFromRect)},
    {&userModule, "MonitorFromPoint", As_Procedure(MonitorFromPoint)},
    {&userModule, "EnumDisplayMonitors", As_Procedure(EnumDisplayMonitors)},
    {&userModule, "GetMonitorInfoA", As_Procedure(GetMonitorInfoA), RigStep::FindMonitorFunction},
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

SIZE_T VirtualQuery(LPCVOID, MEMORY_BASIC_INFORMATION* memory, SIZE_T bytes) {
  if (bytes != sizeof *memory) return 0;
  memory->AllocationBase = &ownModule;
  return bytes;
}

BOOL FreeLibrary(HMODULE module) { return module != nullptr; }

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
  for (const NamedFunction& entry : namedFunctions) {
    if (entry.module != module || std::strcmp(entry.name, name) != 0) continue;
    return entry.step && Step_Fails(*entry.step) ? nullptr : entry.function;
  }
  return nullptr;
}
