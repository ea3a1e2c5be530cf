/* The record menu: a dialog of three buttons over the middle of the plug-in's window. */
#pragma once

#include "platform/win32.h"

/** Shows the menu and waits until it is closed. */
void Record_Menu_Open(HWND window);

/** The dialog procedure of the menu. */
INT_PTR CALLBACK Menu_Dialog_Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
