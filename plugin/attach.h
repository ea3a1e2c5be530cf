/* What the library does when a process attaches it, and when it lets it go. */
#pragma once

#include "platform/win32.h"

#include <cstdint>

/** The module attached; null outside of that time. */
extern HINSTANCE moduleHandle;

/** Faces of the record menu's buttons, null where one could not be loaded. */
extern HBITMAP recordBitmap, stopBitmap, closeBitmap;

/** Settings of the mouse, 0 or 1: with both 0 the plug-in's window does nothing but repaint. */
extern int32_t mouseLButton, mouseRButton;
/** A speed from the registry, -2 without one. Stored and not used: nothing paces frames. */
extern int32_t decoderSpeedSetting;

/** Prepares the file dialog, the browser's settings, the button faces and the settings of the mouse, and hooks the keyboard when
 * the right button's setting is there. Gives 1; 0 for a null module, with nothing else done. */
int32_t Library_Attach(HINSTANCE module);

/** Gives back what Library_Attach took. Gives 1. */
int32_t Library_Detach();

/** Hands each event of the keyboard on. */
LRESULT CALLBACK Keyboard_Hook_Proc(int code, WPARAM wParam, LPARAM lParam);
