/* The module that this code is linked into: the library, or a program that has the library in it. It holds the resources. */
#pragma once

#include "platform/win32.h"

/** Its handle, which need not be given back. */
HMODULE Module_Handle();
