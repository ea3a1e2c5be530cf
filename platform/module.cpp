#include "platform/module.h"

HMODULE Module_Handle() {
  // The memory that a module is loaded into was allocated at its handle. GetModuleHandleEx would need Windows XP.
  MEMORY_BASIC_INFORMATION memory = {};
  if (VirtualQuery(reinterpret_cast<LPCVOID>(&Module_Handle), &memory, sizeof memory) == 0) return nullptr;
  return static_cast<HMODULE>(memory.AllocationBase);
}
