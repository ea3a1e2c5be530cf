#include "platform/module.h"

HMODULE Module_Handle() {
  HMODULE module = nullptr;
  const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  GetModuleHandleExA(flags, reinterpret_cast<LPCSTR>(&Module_Handle), &module);
  return module;
}
