#include "platform/portable/window/dialogs.h"

#include "platform/portable/desktop.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/controls.h"
#include "platform/portable/window/window_record.h"
#include "resources/dialogs.h"

#include <cstring>
#include <strings.h>

/** A dialog that is open: a local variable of the DialogBoxParamA that runs it. */
struct OpenDialog {
  DLGPROC procedure;
  HWND window;  ///< Null when it has been destroyed.
  bool ended;
  INT_PTR result;
};

namespace {

/* ---- The templates -------------------------------------------------------------------------------------------------------- */

/** Places and sizes are in dialog units. */
struct ControlTemplate {
  const char* text;
  int id;
  const char* className;
  DWORD style;
  int x, y, width, height;
};

struct DialogTemplate {
  const char* name;
  DWORD style;
  int width, height;
  std::vector<ControlTemplate> controls;
};

#define CONTROL_TEMPLATE(text, id, className, style, x, y, width, height) {text, id, className, style, x, y, width, height},
#define DIALOG_TEMPLATE(id, name, style, width, height, fontSize, font, controls) \
  {name, style, width, height, {controls(CONTROL_TEMPLATE)}},

/** The dialog of the resources with that name, or null. */
const DialogTemplate* Find_Template(LPCSTR name) {
  static const DialogTemplate templates[] = {DIALOGS(DIALOG_TEMPLATE)};
  for (const DialogTemplate& dialog : templates)
    if (name && strcasecmp(name, dialog.name) == 0) return &dialog;
  return nullptr;
}

/** A quarter of the mean width and an eighth of the height of the font System of 10 points, which all dialogs count in. */
constexpr int UnitWidth = 8 / 4, UnitHeight = 16 / 8;

void Make_Controls(HWND dialog, const std::vector<ControlTemplate>& controls) {
  for (const ControlTemplate& control : controls) {
    CreateWindowExA(0, control.className, control.text, control.style, control.x * UnitWidth, control.y * UnitHeight,
                    control.width * UnitWidth, control.height * UnitHeight, dialog,
                    reinterpret_cast<HMENU>(static_cast<uintptr_t>(control.id)), dialog->instance, nullptr);
  }
}

std::vector<HWND> Controls_Of(HWND dialog) {
  std::vector<HWND> controls;
  for (HWND window : allWindows)
    if (window->parent == dialog) controls.push_back(window);
  return controls;
}

/* ---- The window ----------------------------------------------------------------------------------------------------------- */

constexpr char DialogClass[] = "#32770";

void Destroyed(HWND window) {
  window->dialog->window = nullptr;
  window->dialog = nullptr;
  // Wakes Run_Dialog.
  PostMessageA(nullptr, WM_NULL, 0, 0);
}

LRESULT Dialog_Default(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CLOSE) return SendMessageA(window, WM_COMMAND, IDCANCEL, 0);
  if (message != WM_ERASEBKGND) return DefWindowProcA(window, message, wParam, lParam);
  Fill_Pixels(Window_View(window), {0, 0, window->width, window->height}, ButtonFace);
  Desktop_Pixels_Changed(window);
  return TRUE;
}

LRESULT Dialog_Window_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const OpenDialog* const dialog = window->dialog;
  const INT_PTR handled = dialog ? dialog->procedure(window, message, wParam, lParam) : 0;
  if (!Window_Find(window)) return 0;
  if (message == WM_DESTROY && window->dialog) Destroyed(window);
  return handled != 0 ? handled : Dialog_Default(window, message, wParam, lParam);
}

HWND Make_Dialog(const DialogTemplate& layout, HINSTANCE module, HWND owner, OpenDialog* dialog) {
  WNDCLASSA type = {};
  type.lpfnWndProc = Dialog_Window_Proc;
  type.lpszClassName = DialogClass;
  RegisterClassA(&type);
  const POINT origin = Window_Find(owner) ? Window_Origin(owner) : POINT{0, 0};
  const HWND window = CreateWindowExA(0, DialogClass, "", layout.style, origin.x, origin.y, layout.width * UnitWidth,
                                      layout.height * UnitHeight, owner, nullptr, module, nullptr);
  if (!window) return nullptr;
  window->dialog = dialog;
  dialog->window = window;
  Make_Controls(window, layout.controls);
  return window;
}

/** Paints the dialog at once: WM_PAINT would wait while other messages keep coming. */
void Paint_All(HWND dialog) {
  SendMessageA(dialog, WM_PAINT, 0, 0);
  for (HWND control : Controls_Of(dialog)) SendMessageA(control, WM_PAINT, 0, 0);
}

bool Is_Escape(const OpenDialog& dialog, const MSG& message) {
  const bool ours = message.hwnd && (message.hwnd == dialog.window || GetParent(message.hwnd) == dialog.window);
  return ours && message.message == WM_KEYDOWN && message.wParam == VK_ESCAPE;
}

void Run_Dialog(const OpenDialog& dialog) {
  while (dialog.window && !dialog.ended) {
    MSG message;
    if (!GetMessageA(&message, nullptr, 0, 0)) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    if (Is_Escape(dialog, message)) {
      SendMessageA(dialog.window, WM_COMMAND, IDCANCEL, 0);
      continue;
    }
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

ScreenFileChooser fileChooser;

}  // namespace

INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR name, HWND owner, DLGPROC procedure, LPARAM param) {
  const DialogTemplate* const found = Find_Template(name);
  if (!found || !procedure) return -1;
  OpenDialog dialog = {procedure, nullptr, false, IDCANCEL};
  if (!Make_Dialog(*found, module, owner, &dialog)) return -1;
  const HWND top = Window_Top(Window_Find(owner));
  const bool disables = IsWindowEnabled(top);
  if (disables) EnableWindow(top, FALSE);
  const std::vector<HWND> controls = Controls_Of(dialog.window);
  SendMessageA(dialog.window, WM_INITDIALOG, controls.empty() ? 0 : reinterpret_cast<WPARAM>(controls[0]), param);
  if (dialog.window && !dialog.ended) {
    ShowWindow(dialog.window, SW_SHOW);
    Paint_All(dialog.window);
  }
  Run_Dialog(dialog);
  if (disables) EnableWindow(top, TRUE);
  if (dialog.window) DestroyWindow(dialog.window);
  return dialog.result;
}

BOOL EndDialog(HWND window, INT_PTR result) {
  if (!Window_Find(window) || !window->dialog) return FALSE;
  window->dialog->ended = true;
  window->dialog->result = result;
  PostMessageA(window, WM_NULL, 0, 0);
  return TRUE;
}

HWND GetDlgItem(HWND dialog, int id) {
  for (HWND window : allWindows)
    if (window->parent && window->parent == dialog && window->id == id) return window;
  return nullptr;
}

LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam) {
  return SendMessageA(GetDlgItem(dialog, id), message, wParam, lParam);
}

void Screen_Set_File_Chooser(const ScreenFileChooser& chooser) { fileChooser = chooser; }

BOOL GetOpenFileNameA(OPENFILENAMEA* dialog) {
  if (!dialog || dialog->lStructSize != OPENFILENAME_SIZE_VERSION_400A || !dialog->lpstrFile || !fileChooser) return FALSE;
  const std::optional<std::string> chosen = fileChooser(*dialog);
  if (!chosen || chosen->size() >= dialog->nMaxFile) return FALSE;
  std::memcpy(dialog->lpstrFile, chosen->c_str(), chosen->size() + 1);
  return TRUE;
}

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
  if (!text) text = "";
  if (!caption) caption = "";
  if (!Desktop_Show_Message(owner, text, caption, type)) Note_Message(text, caption);
  return IDOK;
}
