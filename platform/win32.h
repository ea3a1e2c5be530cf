/* The operating system, by the names of Windows: its own headers there, elsewhere the portable layer. The only header above
 * platform/ that differs between the two. */
#pragma once

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <ddraw.h>
#include <windows.h>
// These two build on windows.h.
#include <commctrl.h>
#include <commdlg.h>

#else

#include "platform/portable/paint/ddraw.h"
#include "platform/portable/paint/gdi.h"
#include "platform/portable/system/kernel.h"
#include "platform/portable/system/registry.h"
#include "platform/portable/system/types.h"
#include "platform/portable/window/controls.h"
#include "platform/portable/window/dialogs.h"
#include "platform/portable/window/monitor.h"
#include "platform/portable/window/resource.h"
#include "platform/portable/window/window.h"

#endif
