#include "apps/host/browser.h"

#include <windows.h>

const char* const DefaultLibrary = "velarto.dll";
const char* const StrangeWindowHint = "";

void* Library_Open(const char* name, std::string* error) {
  const HMODULE module = LoadLibraryA(name);
  if (!module) *error = std::string("can't load ") + name + ": error " + std::to_string(GetLastError());
  return module;
}

void* Library_Find(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void Library_Close(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }
