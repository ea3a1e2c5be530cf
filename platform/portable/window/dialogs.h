/* Dialogs: those of the resources, and the system's own. Their calls return when they are closed. */
#pragma once

#include "platform/portable/system/types.h"
#include "platform/portable/window/window.h"

using DLGPROC = INT_PTR (*)(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

constexpr UINT MB_OK = 0, MB_ICONERROR = 0x10;
constexpr int IDOK = 1, IDCANCEL = 2;
constexpr DWORD OFN_OVERWRITEPROMPT = 2, OFN_PATHMUSTEXIST = 0x800;

struct OPENFILENAMEA {
  DWORD lStructSize;
  HWND hwndOwner;
  HINSTANCE hInstance;
  LPCSTR lpstrFilter;
  LPSTR lpstrCustomFilter;
  DWORD nMaxCustFilter;
  DWORD nFilterIndex;
  LPSTR lpstrFile;
  DWORD nMaxFile;
  LPSTR lpstrFileTitle;
  DWORD nMaxFileTitle;
  LPCSTR lpstrInitialDir;
  LPCSTR lpstrTitle;
  DWORD Flags;
  WORD nFileOffset;
  WORD nFileExtension;
  LPCSTR lpstrDefExt;
  LPARAM lCustData;
  FARPROC lpfnHook;
  LPCSTR lpTemplateName;
};
constexpr DWORD OPENFILENAME_SIZE_VERSION_400A = sizeof(OPENFILENAMEA);

/** Opens a dialog of the resources: sends WM_INITDIALOG with param, shows it and runs the thread's messages until EndDialog,
 * whose result it gives. The owner's top-level window is disabled until then. Escape and WM_CLOSE send WM_COMMAND with IDCANCEL.
 * Gives IDCANCEL also when owner or dialog are destroyed, and on WM_QUIT, which is posted again. -1 without such a dialog. */
INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR name, HWND owner, DLGPROC procedure, LPARAM param);
/** Closes a dialog. FALSE for a window that is no dialog. */
BOOL EndDialog(HWND dialog, INT_PTR result);
/** The control of that number, or null. */
HWND GetDlgItem(HWND dialog, int id);
LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);

/** Asks the desktop's file chooser (Screen_Set_File_Chooser), which finds the proposed name in lpstrFile; the chosen one is
 * stored there. FALSE without a chooser, when it declines, or when the name is longer than nMaxFile allows. */
BOOL GetOpenFileNameA(OPENFILENAMEA* dialog);

/** Shown by the desktop; without one, or by one that shows none, the message is dropped. Gives IDOK. */
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
