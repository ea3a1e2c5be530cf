/* Numbers and names of the resources that are compiled into the library. */
#pragma once

#include "resources/texts.h"

#include <cstdint>

/** Bitmaps: the template of the motion-detection overlay, and the faces of the record menu's buttons. */
constexpr uintptr_t TemplateBitmapId = TEMPLATE_BITMAP, RecordBitmapId = RECORD_BITMAP, StopBitmapId = STOP_BITMAP,
                    CloseBitmapId = CLOSE_BITMAP;
/** Cursors: a pointing hand, and the same with an hourglass. */
constexpr uintptr_t CursorNormalId = NORMAL_CURSOR, CursorRecordingId = RECORDING_CURSOR;
/** Texts of the tooltip. */
constexpr uint32_t SavingTextId = SAVING_TEXT_ID, IdleTextId = IDLE_TEXT_ID;
/** The record menu and its buttons. */
constexpr char MenuDialogName[] = MENU_DIALOG_NAME;
constexpr int RecordButtonId = RECORD_BUTTON, StopButtonId = STOP_BUTTON, CloseButtonId = CLOSE_BUTTON;

/** The MIME type of a camera's stream. */
constexpr char MimeType[] = MIME_TYPE_TEXT;
/** The key of the maker's settings, below HKEY_LOCAL_MACHINE. */
constexpr char MakerKey[] = MAKER_KEY_TEXT;
