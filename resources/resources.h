/* What is compiled into the library as resources, by the numbers that velarto.rc gives. */
#pragma once

#include "platform/win32.h"

/** The template of the motion-detection overlay, md1.bmp. */
constexpr uintptr_t TemplateBitmapId = 111;

/** The module that holds the resources: the one that this code is linked into. */
HMODULE Module_Handle();
