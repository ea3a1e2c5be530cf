/* The dialogs, for velarto.rc and for the portable layer: only #define. DIALOGS applies a macro to each dialog, and a dialog's
 * list of controls applies a macro to each control. Positions and sizes are in dialog units. */
#ifndef VELARTO_DIALOGS_H
#define VELARTO_DIALOGS_H

#include "resources/texts.h"

/* Text, number, class, style, left, top, width, height. The style is WS_CHILD, WS_VISIBLE, WS_TABSTOP, BS_BITMAP. */
#define MENU_BUTTON_STYLE 0x50010080
#define MENU_CONTROLS(CONTROL_MACRO)                                          \
  CONTROL_MACRO("", RECORD_BUTTON, "Button", MENU_BUTTON_STYLE, 0, 0, 15, 14) \
  CONTROL_MACRO("", STOP_BUTTON, "Button", MENU_BUTTON_STYLE, 16, 0, 14, 14)  \
  CONTROL_MACRO("", CLOSE_BUTTON, "Button", MENU_BUTTON_STYLE, 33, 0, 14, 14)

/* Name, name as a text, style (WS_POPUP, DS_SETFONT), width, height, size and name of the font, list of controls. */
#define DIALOGS(DIALOG_MACRO) DIALOG_MACRO(MENU_DIALOG, MENU_DIALOG_NAME, 0x80000040, 59, 14, 10, "System", MENU_CONTROLS)

#endif
