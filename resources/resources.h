/* What is compiled into the library as resources. */
#pragma once

#include "resources/texts.h"

#include "platform/win32.h"

/** Bitmaps: the template of the motion-detection overlay, and the faces of the record menu's buttons. */
constexpr uintptr_t TemplateBitmapId = TEMPLATE_BITMAP, RecordBitmapId = RECORD_BITMAP, StopBitmapId = STOP_BITMAP,
                    CloseBitmapId = CLOSE_BITMAP;
/** Cursors: a pointing hand, and the same with an hourglass. */
constexpr uintptr_t CursorNormalId = NORMAL_CURSOR, CursorRecordingId = RECORDING_CURSOR;
/** Texts of the tooltip. */
constexpr UINT SavingTextId = SAVING_TEXT_ID, IdleTextId = IDLE_TEXT_ID;
/** The record menu and its buttons. */
constexpr char MenuDialogName[] = MENU_DIALOG_NAME;
constexpr int RecordButtonId = RECORD_BUTTON, StopButtonId = STOP_BUTTON, CloseButtonId = CLOSE_BUTTON;

/** The module that holds the resources: the one that this code is linked into. */
HMODULE Module_Handle();
