#include "apps/host/browser.h"

#include <dlfcn.h>

const char* const DefaultLibrary = "libvelarto.so";
const char* const StrangeWindowHint =
    "; only the library in the folder plugin/ shows in the windows of the program that loads it";

void* Library_Open(const char* name, std::string* error) {
  void* const library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
  const char* const reason = library ? nullptr : dlerror();
  if (!library) *error = std::string("can't load ") + (reason ? reason : name);
  return library;
}

void* Library_Find(void* library, const char* name) { return dlsym(library, name); }

void Library_Close(void* library) { dlclose(library); }
