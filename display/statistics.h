/* Texts about the stream, laid over the shown picture. */
#pragma once

#include "display/context.h"

/** Stores the bit-rate text: at most 31 characters, the rest zeros. */
void Set_OSD_Text(JdecDisplay* display, const char* text);
