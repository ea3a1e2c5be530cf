/* Numbers and texts of the resources, for velarto.rc and for code alike: nothing but #define. */
#ifndef VELARTO_TEXTS_H
#define VELARTO_TEXTS_H

#define TEMPLATE_BITMAP 111
#define RECORD_BITMAP 107
#define STOP_BITMAP 108
#define CLOSE_BITMAP 109
#define NORMAL_CURSOR 101
#define RECORDING_CURSOR 104

#define SAVING_TEXT_ID 1
#define SAVING_TEXT "Saving to file..."
#define IDLE_TEXT_ID 2
#define IDLE_TEXT "Right click to record."

/* The record menu: WS_POPUP, DS_SETFONT; its buttons: WS_CHILD, WS_VISIBLE, WS_TABSTOP, BS_BITMAP. In dialog units. */
#define MENU_DIALOG MenuDlg
#define MENU_DIALOG_NAME "MenuDlg"
#define MENU_STYLE 0x80000040
#define MENU_FONT_SIZE 10
#define MENU_FONT "System"
#define MENU_WIDTH 59
#define MENU_HEIGHT 14
#define MENU_BUTTON_STYLE 0x50010080
#define RECORD_BUTTON 1000
#define RECORD_BUTTON_PLACE 0, 0, 15, 14
#define STOP_BUTTON 1001
#define STOP_BUTTON_PLACE 16, 0, 14, 14
#define CLOSE_BUTTON 1002
#define CLOSE_BUTTON_PLACE 33, 0, 14, 14

#define MIME_TYPE_TEXT "video/x-orvistream"
#define MAKER_KEY_TEXT "Software\\Orvane Instruments, Inc.\\Plugins"

#endif
