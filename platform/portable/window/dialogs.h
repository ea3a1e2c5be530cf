/* Dialogs: those of the resources, and the system's own. All of them hold the caller up until they are closed. */
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

/** Makes a dialog of the resources, sends WM_INITDIALOG with param, shows it and runs the thread's messages, the top-level window
 * of the owner being disabled, until EndDialog; gives the result told there. Escape and WM_CLOSE send WM_COMMAND with IDCANCEL.
 * Gives IDCANCEL also when the owner, or the dialog, is destroyed meanwhile, and on WM_QUIT, which comes again afterwards. -1 if
 * there is no such dialog. */
INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR name, HWND owner, DLGPROC procedure, LPARAM param);
/** FALSE for a window that is no dialog. */
BOOL EndDialog(HWND dialog, INT_PTR result);
/** The control of that number, or null. */
HWND GetDlgItem(HWND dialog, int id);
LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);

/** Asks what Screen_Set_File_Chooser has set, which finds the proposed name in lpstrFile; the chosen one is stored there. FALSE
 * when it declines, or the name is longer than nMaxFile allows. */
BOOL GetOpenFileNameA(OPENFILENAMEA* dialog);

/** Shown by the desktop; without one, or by one that doesn't, the message goes to Screen_Take_Messages. The answer is IDOK. */
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
