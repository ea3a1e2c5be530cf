/* What is compiled in, by its number. The files are those of resources/; the module is ignored. */
#pragma once

#include "platform/portable/system/types.h"

#define MAKEINTRESOURCEA(number) (reinterpret_cast<LPCSTR>(static_cast<uintptr_t>(number)))
#define IDC_ARROW MAKEINTRESOURCEA(32512)

/** A bitmap of a file with 4 or 8 bits a pixel, which the caller deletes. Null without one of that number, or without memory. */
HBITMAP LoadBitmapA(HMODULE module, LPCSTR name);

/** A cursor of resources/, or the system's arrow; it is never destroyed. Null if there is none of that number. */
HCURSOR LoadCursorA(HINSTANCE module, LPCSTR name);

/** Copies a text, cut to size - 1 characters, and a zero; gives the characters copied, 0 if there is none of that number. */
int LoadStringA(HINSTANCE module, UINT number, LPSTR text, int size);
