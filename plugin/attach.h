/* What the library does when a process loads it, and when it is unloaded. */
#pragma once

#include "platform/win32.h"

#include <cstdint>

/** The library's module while it is attached, otherwise null. */
extern HINSTANCE moduleHandle;

/** Bitmaps on the record menu's buttons. Null if one can't be loaded. */
extern HBITMAP recordBitmap, stopBitmap, closeBitmap;

/** Mouse settings, 0 or 1. With both 0 the plug-in's window has no menu, tooltip and cursor of its own. */
extern int32_t mouseLButton, mouseRButton;
/** A speed from the registry, -2 without one. It is not used: frames are not paced. */
extern int32_t decoderSpeedSetting;

/** Prepares the file dialog, the browser's settings and the button bitmaps, reads the mouse settings, and installs a keyboard
 *  hook if the right button has a setting. False for a null module, with nothing else done. */
bool Library_Attach(HINSTANCE module);

/** Frees what Library_Attach made. */
void Library_Detach();

/** Passes every keyboard event on to the next hook. */
LRESULT CALLBACK Keyboard_Hook_Proc(int code, WPARAM wParam, LPARAM lParam);
