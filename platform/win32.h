/* The one door to the system: on Windows its own headers, elsewhere the same operations from platform/portable/. */
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

#include "platform/portable/controls.h"
#include "platform/portable/ddraw.h"
#include "platform/portable/dialogs.h"
#include "platform/portable/gdi.h"
#include "platform/portable/kernel.h"
#include "platform/portable/monitor.h"
#include "platform/portable/registry.h"
#include "platform/portable/resource.h"
#include "platform/portable/types.h"
#include "platform/portable/window.h"

#endif
