/* Which monitor a window is on. The system's functions are looked up at run time; without them, fallbacks know one screen. */
#pragma once

#include "display/context.h"

/** Handle of the one monitor that the fallbacks know. */
constexpr uintptr_t primaryMonitorHandle = 0x12340042;

/** 1 if the monitor nearest to the display's window is not the primary one, otherwise 0; 0 too if the monitor can't be asked. */
int32_t Window_On_Secondary_Monitor(const JdecDisplay* display);

/** Looks up the system's functions, at the first call in a process. Gives non-zero if they are used, 0 for the fallbacks. */
int32_t Monitor_Stubs_Resolve();

/* The system's MonitorFromWindow, MonitorFromRect and GetMonitorInfoA, or their fallbacks. flags: 0, MONITOR_DEFAULTTOPRIMARY or
 * MONITOR_DEFAULTTONEAREST. */
HMONITOR Monitor_From_Window(HWND window, DWORD flags);
HMONITOR Monitor_From_Rect(const RECT* rect, DWORD flags);
int32_t Monitor_Get_Info(HMONITOR monitor, MONITORINFO* info);
