#include "platform/portable/window/monitor.h"

#include "platform/portable/paint/screen.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window.h"

#include <algorithm>
#include <cstdio>

struct HMONITOR__ {
  char unused;
};

namespace {

constexpr int32_t MostMonitors = 16;
HMONITOR__ monitors[MostMonitors];

int32_t Monitor_Count() { return std::clamp(screenState.setup.adapters, 1, MostMonitors); }

RECT Monitor_Area(int32_t index) {
  const ScreenSetup& setup = screenState.setup;
  return {index * setup.width, 0, (index + 1) * setup.width, setup.height};
}

/** Number of a monitor, or -1. */
int32_t Monitor_Index(HMONITOR monitor) {
  for (int32_t i = 0; i < Monitor_Count(); ++i)
    if (monitor == &monitors[i]) return i;
  return -1;
}

int64_t Area_Of(const RECT& rect) {
  if (Rect_Is_Empty(rect)) return 0;
  return (int64_t{rect.right} - rect.left) * (int64_t{rect.bottom} - rect.top);
}

/** Distance between two spans, 0 when they touch. */
int64_t Gap(LONG fromA, LONG toA, LONG fromB, LONG toB) {
  return std::max<int64_t>({int64_t{fromB} - toA, int64_t{fromA} - toB, 0});
}

int64_t Distance(const RECT& a, const RECT& b) {
  return Gap(a.left, a.right, b.left, b.right) + Gap(a.top, a.bottom, b.top, b.bottom);
}

int32_t Nearest_Monitor(const RECT& rect) {
  int32_t best = 0;
  for (int32_t i = 1; i < Monitor_Count(); ++i)
    if (Distance(Monitor_Area(i), rect) < Distance(Monitor_Area(best), rect)) best = i;
  return best;
}

void Copy_Name(char* to, size_t size, int32_t index) { std::snprintf(to, size, "\\\\.\\DISPLAY%d", index + 1); }

}  // namespace

HMONITOR MonitorFromRect(const RECT* rect, DWORD flags) {
  int32_t best = -1;
  int64_t bestArea = 0;
  for (int32_t i = 0; i < Monitor_Count(); ++i) {
    const int64_t area = Area_Of(Rect_Common(*rect, Monitor_Area(i)));
    if (area <= bestArea) continue;
    best = i;
    bestArea = area;
  }
  if (best < 0 && flags == MONITOR_DEFAULTTOPRIMARY) best = 0;
  if (best < 0 && flags == MONITOR_DEFAULTTONEAREST) best = Nearest_Monitor(*rect);
  return best < 0 ? nullptr : &monitors[best];
}

HMONITOR MonitorFromPoint(POINT point, DWORD flags) {
  const RECT rect{point.x, point.y, point.x + 1, point.y + 1};
  return MonitorFromRect(&rect, flags);
}

HMONITOR MonitorFromWindow(HWND window, DWORD flags) {
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  RECT rect{};
  const bool known = IsIconic(window) ? GetWindowPlacement(window, &placement) : GetWindowRect(window, &rect);
  if (!known) return flags == MONITOR_DEFAULTTONULL ? nullptr : &monitors[0];
  return MonitorFromRect(IsIconic(window) ? &placement.rcNormalPosition : &rect, flags);
}

BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* info) {
  if (Step_Fails(RigStep::GetMonitorInfo)) return FALSE;
  const int32_t index = Monitor_Index(monitor);
  if (index < 0 || !info) return FALSE;
  if (info->cbSize != sizeof(MONITORINFO) && info->cbSize != sizeof(MONITORINFOEXA)) return FALSE;
  info->rcMonitor = info->rcWork = Monitor_Area(index);
  info->dwFlags = index == 0 ? MONITORINFOF_PRIMARY : 0;
  if (info->cbSize == sizeof(MONITORINFOEXA)) Copy_Name(static_cast<MONITORINFOEXA*>(info)->szDevice, CCHDEVICENAME, index);
  return TRUE;
}

BOOL EnumDisplayMonitors(HDC, const RECT*, MONITORENUMPROC callback, LPARAM data) {
  for (int32_t i = 0; i < Monitor_Count(); ++i) {
    RECT area = Monitor_Area(i);
    if (!callback(&monitors[i], nullptr, &area, data)) return FALSE;
  }
  return TRUE;
}

BOOL EnumDisplayDevicesA(LPCSTR, DWORD index, DISPLAY_DEVICEA* info, DWORD) {
  if (index >= static_cast<DWORD>(Monitor_Count()) || info->cb < sizeof *info) return FALSE;
  const DWORD size = info->cb;
  *info = {};
  info->cb = size;
  Copy_Name(info->DeviceName, sizeof info->DeviceName, static_cast<int32_t>(index));
  info->StateFlags = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | (index == 0 ? DISPLAY_DEVICE_PRIMARY_DEVICE : 0);
  return TRUE;
}

int GetSystemMetrics(int index) {
  if (index == SM_CXSCREEN) return screenState.setup.width;
  return index == SM_CYSCREEN ? screenState.setup.height : 0;
}

BOOL SystemParametersInfoA(UINT action, UINT, LPVOID data, UINT) {
  if (action != SPI_GETWORKAREA || !data) return FALSE;
  *static_cast<RECT*>(data) = Monitor_Area(0);
  return TRUE;
}

BOOL SetRect(RECT* rect, int left, int top, int right, int bottom) {
  *rect = {left, top, right, bottom};
  return TRUE;
}

BOOL OffsetRect(RECT* rect, int x, int y) {
  *rect = {rect->left + x, rect->top + y, rect->right + x, rect->bottom + y};
  return TRUE;
}
