/* Modules: that which this code is linked into, and functions of others that are looked up. */
#pragma once

#include "platform/win32.h"

/** The library, or a program that has the library in it; it holds the resources. The handle need not be given back. */
HMODULE Module_Handle();

/** The function of that name, which the caller knows the type of; null if the module has none, or for no module. */
template <typename Function>
Function Module_Function(HMODULE module, const char* name) {
  return module ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}
