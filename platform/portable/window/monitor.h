/* Monitors: side by side, all of the screen's size, the primary one leftmost. Without a screen there still is one. */
#pragma once

#include "platform/portable/system/types.h"

constexpr DWORD MONITOR_DEFAULTTONULL = 0, MONITOR_DEFAULTTOPRIMARY = 1, MONITOR_DEFAULTTONEAREST = 2;
constexpr DWORD MONITORINFOF_PRIMARY = 1;
constexpr size_t CCHDEVICENAME = 32;
constexpr DWORD DISPLAY_DEVICE_ATTACHED_TO_DESKTOP = 1, DISPLAY_DEVICE_PRIMARY_DEVICE = 4;

struct MONITORINFO {
  DWORD cbSize;
  RECT rcMonitor;
  RECT rcWork;
  DWORD dwFlags;
};

struct MONITORINFOEXA : MONITORINFO {
  CHAR szDevice[CCHDEVICENAME];
};

struct DISPLAY_DEVICEA {
  DWORD cb;
  CHAR DeviceName[32];
  CHAR DeviceString[128];
  DWORD StateFlags;
  CHAR DeviceID[128];
  CHAR DeviceKey[128];
};

using MONITORENUMPROC = BOOL (*)(HMONITOR monitor, HDC dc, RECT* rect, LPARAM data);

/** The monitor with the largest part of the window (of its normal position while minimised) or rectangle, or with the point. If
 * there is none: null, the primary or the nearest one, as flags say. */
HMONITOR MonitorFromWindow(HWND window, DWORD flags);
HMONITOR MonitorFromRect(const RECT* rect, DWORD flags);
HMONITOR MonitorFromPoint(POINT point, DWORD flags);
/** cbSize says whether info is a MONITORINFO or a MONITORINFOEXA; FALSE for other sizes and other handles. */
BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* info);
/** Calls back for each monitor, until a call gives FALSE. dc and clip are null. */
BOOL EnumDisplayMonitors(HDC dc, const RECT* clip, MONITORENUMPROC callback, LPARAM data);
/** Describes monitor number `index`; FALSE if there is none. device is null. */
BOOL EnumDisplayDevicesA(LPCSTR device, DWORD index, DISPLAY_DEVICEA* info, DWORD flags);
