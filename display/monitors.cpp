#include "display/monitors.h"

#include "platform/lock.h"
#include "platform/module.h"

namespace {

using FromWindow = HMONITOR(WINAPI*)(HWND, DWORD);
using FromRect = HMONITOR(WINAPI*)(const RECT*, DWORD);
using GetInfo = BOOL(WINAPI*)(HMONITOR, MONITORINFO*);

/** All set or all null. */
struct MonitorFunctions {
  FromWindow fromWindow;
  FromRect fromRect;
  GetInfo getInfo;
};

/** The functions for several monitors. If the system lacks one of them, none is used. */
constexpr const char* functionNames[] = {"GetSystemMetrics",    "MonitorFromWindow", "MonitorFromRect",    "MonitorFromPoint",
                                         "EnumDisplayMonitors", "GetMonitorInfoA",   "EnumDisplayDevicesA"};

constexpr DWORD AnyDefault = MONITOR_DEFAULTTOPRIMARY | MONITOR_DEFAULTTONEAREST;

MonitorFunctions Find_Functions() {
  const HMODULE library = GetModuleHandleA("USER32");
  if (!library) return {};
  for (const char* name : functionNames) {
    if (!GetProcAddress(library, name)) return {};
  }
  return {Module_Function<FromWindow>(library, "MonitorFromWindow"), Module_Function<FromRect>(library, "MonitorFromRect"),
          Module_Function<GetInfo>(library, "GetMonitorInfoA")};
}

ModuleLock functionsLock;

/** They are looked up once. */
MonitorFunctions Functions() {
  static bool found = false;
  static MonitorFunctions functions = {};
  const LockHold hold(functionsLock);
  if (!found) functions = Find_Functions();
  found = true;
  return functions;
}

HMONITOR Pseudo_Monitor() { return reinterpret_cast<HMONITOR>(primaryMonitorHandle); }

}  // namespace

int32_t Window_On_Secondary_Monitor(const JdecDisplay* display) {
  MONITORINFO info = {};
  info.cbSize = sizeof info;
  const HMONITOR monitor = Monitor_From_Window(display->window, MONITOR_DEFAULTTONEAREST);
  if (Monitor_Get_Info(monitor, &info) == 0) return 0;
  return (info.dwFlags & MONITORINFOF_PRIMARY) == 0 ? 1 : 0;
}

int32_t Monitor_Stubs_Resolve() { return Functions().getInfo != nullptr ? 1 : 0; }

HMONITOR Monitor_From_Window(HWND window, DWORD flags) {
  if (Monitor_Stubs_Resolve() != 0) return Functions().fromWindow(window, flags);
  if ((flags & AnyDefault) != 0) return Pseudo_Monitor();
  RECT rect = {};
  if (IsIconic(window)) {
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    if (!GetWindowPlacement(window, &placement)) return nullptr;
    rect = placement.rcNormalPosition;
  } else if (!GetWindowRect(window, &rect)) {
    return nullptr;
  }
  return Monitor_From_Rect(&rect, flags);
}

HMONITOR Monitor_From_Rect(const RECT* rect, DWORD flags) {
  if (Monitor_Stubs_Resolve() != 0) return Functions().fromRect(rect, flags);
  if ((flags & AnyDefault) != 0) return Pseudo_Monitor();
  const bool onScreen = rect->right >= 1 && rect->bottom >= 1 && rect->left < GetSystemMetrics(SM_CXSCREEN) &&
                        rect->top < GetSystemMetrics(SM_CYSCREEN);
  return onScreen ? Pseudo_Monitor() : nullptr;
}

int32_t Monitor_Get_Info(HMONITOR monitor, MONITORINFO* info) {
  if (Monitor_Stubs_Resolve() != 0) return Functions().getInfo(monitor, info);
  if (monitor != Pseudo_Monitor() || !info || info->cbSize < sizeof(MONITORINFO)) return 0;
  RECT work = {};
  if (!SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0)) return 0;
  info->rcMonitor = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  info->rcWork = work;
  info->dwFlags = MONITORINFOF_PRIMARY;
  if (info->cbSize >= sizeof(MONITORINFOEXA)) {
    lstrcpyA(reinterpret_cast<MONITORINFOEXA*>(info)->szDevice, "DISPLAY");
  }
  return 1;
}
