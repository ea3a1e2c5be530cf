/* Which monitor a window is on. The monitor functions are looked up at run time; a system without them counts as having the one
 * screen. */
#pragma once

#include "display/context.h"

/** Pseudo handle of the one monitor that the fallbacks know. */
constexpr uintptr_t primaryMonitorHandle = 0x12340042;

/** 1 when the monitor nearest to the display's window is not the primary one; 0 also when that can't be told. */
int32_t Window_On_Secondary_Monitor(const JdecDisplay* display);

/** Looks the functions up, once a process. Gives non-zero when the real ones are in use. */
int32_t Monitor_Stubs_Resolve();

/** The system's operations of these names, or their fallbacks. flags: MONITOR_DEFAULTTOPRIMARY, MONITOR_DEFAULTTONEAREST. */
HMONITOR Monitor_From_Window(HWND window, DWORD flags);
HMONITOR Monitor_From_Rect(const RECT* rect, DWORD flags);
int32_t Monitor_Get_Info(HMONITOR monitor, MONITORINFO* info);
