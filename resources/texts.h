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

/* The record menu and its buttons; dialogs.h has its layout. */
#define MENU_DIALOG MenuDlg
#define MENU_DIALOG_NAME "MenuDlg"
#define RECORD_BUTTON 1000
#define STOP_BUTTON 1001
#define CLOSE_BUTTON 1002

#define MIME_TYPE_TEXT "video/x-orvistream"
#define MAKER_KEY_TEXT "Software\\Orvane Instruments, Inc.\\Plugins"

#endif
