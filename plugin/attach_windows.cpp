/* The library's entry point on Windows. */
#include "plugin/attach.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) return Library_Attach(module);
  if (reason == DLL_PROCESS_DETACH) Library_Detach();
  return TRUE;
}
