#include "plugin/menu.h"

#include "plugin/attach.h"
#include "plugin/instances.h"
#include "plugin/recording.h"
#include "resources/resources.h"

namespace {

/** The dialog's client area in pixels, and the side of its square buttons. */
constexpr int MenuWidth = 69, MenuHeight = 20, ButtonSize = 20;
/** Distances of the dialog's upper left corner from the middle of the window. */
constexpr int LeftOfMiddle = 32, AboveMiddle = 10;

struct MenuButton {
  int id, x;
  HBITMAP* face;
};
constexpr MenuButton menuButtons[] = {
    {RecordButtonId, 3, &recordBitmap}, {StopButtonId, 23, &stopBitmap}, {CloseButtonId, 46, &closeBitmap}};

void Place_Dialog(HWND dialog, HWND window) {
  RECT place = {}, frame = {0, 0, MenuWidth, MenuHeight};
  GetWindowRect(window, &place);
  const int left = place.left + (place.right - place.left) / 2 - LeftOfMiddle;
  const int top = place.top + (place.bottom - place.top) / 2 - AboveMiddle;
  AdjustWindowRect(&frame, static_cast<DWORD>(GetWindowLongPtrA(dialog, GWL_STYLE)), FALSE);
  MoveWindow(dialog, left, top, frame.right - frame.left, frame.bottom - frame.top, TRUE);
}

void Set_Up_Buttons(HWND dialog, const JdecDecoder* decoder) {
  for (const MenuButton& button : menuButtons) {
    MoveWindow(GetDlgItem(dialog, button.id), button.x, 0, ButtonSize, ButtonSize, TRUE);
    SendDlgItemMessageA(dialog, button.id, BM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(*button.face));
  }
  const bool idle = decoder->recordState == RecordOff;
  EnableWindow(GetDlgItem(dialog, RecordButtonId), idle && decoder->skipRecording == 0);
  EnableWindow(GetDlgItem(dialog, StopButtonId), !idle);
  EnableWindow(GetDlgItem(dialog, CloseButtonId), TRUE);
}

INT_PTR On_Init(HWND dialog, HWND window) {
  SetWindowLongPtrA(dialog, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(window));
  const NPP instance = Find_Instance_By_Window(window);
  if (!instance) return 0;
  Place_Dialog(dialog, window);
  Set_Up_Buttons(dialog, Instance_Decoder(instance));
  return 1;
}

/** Starts or stops a recording and closes the menu. Does nothing if the instance has ended. */
INT_PTR Record_By_Button(HWND dialog, void (*record)(HWND window, JdecDecoder* decoder)) {
  const auto window = reinterpret_cast<HWND>(GetWindowLongPtrA(dialog, GWLP_USERDATA));
  const NPP instance = Find_Instance_By_Window(window);
  if (!instance) return 0;
  record(window, Instance_Decoder(instance));
  EndDialog(dialog, 1);
  return 1;
}

INT_PTR On_Button(HWND dialog, int id) {
  switch (id) {
    case RecordButtonId:
      return Record_By_Button(dialog, Record_Start);
    case StopButtonId:
      return Record_By_Button(dialog, Record_Stop);
    case CloseButtonId:
    case IDCANCEL:
      EndDialog(dialog, 1);
      return 1;
    default:
      return 0;
  }
}

}  // namespace

void Record_Menu_Open(HWND window) {
  DialogBoxParamA(moduleHandle, MenuDialogName, window, Menu_Dialog_Proc, reinterpret_cast<LPARAM>(window));
}

INT_PTR CALLBACK Menu_Dialog_Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) return On_Init(dialog, reinterpret_cast<HWND>(lParam));
  return message == WM_COMMAND ? On_Button(dialog, LOWORD(wParam)) : 0;
}
