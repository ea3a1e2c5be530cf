/* The controls that there are: the push button that shows a picture (class "Button"), and the tooltip. */
#pragma once

#include "platform/portable/system/types.h"
#include "platform/portable/window/window.h"

#include <cstddef>

/* A button is drawn raised, pressed while the left mouse button is down on it, and with a grey picture while it is disabled. When
 * it is released it sends WM_COMMAND with its number and BN_CLICKED to its parent. */
constexpr UINT BM_SETIMAGE =
    0x00F7;  ///< wParam IMAGE_BITMAP; lParam the picture, which stays the caller's. Gives the one before.
constexpr WPARAM IMAGE_BITMAP = 0;
constexpr WORD BN_CLICKED = 0;

/* A tooltip keeps its tool, which it asks for the text. The desktop decides when it is seen (Screen_Open_Tooltip). The tool's
 * rectangle is ignored: the tool is the whole window. */
#define TOOLTIPS_CLASSA "tooltips_class32"
#define LPSTR_TEXTCALLBACKA (reinterpret_cast<LPSTR>(static_cast<intptr_t>(-1)))
constexpr DWORD TTS_ALWAYSTIP = 1;
constexpr UINT TTF_CENTERTIP = 2, TTF_SUBCLASS = 0x10;
constexpr UINT TTM_ADDTOOLA = WM_USER + 4;  ///< lParam a TOOLINFOA. Gives TRUE; FALSE for another size than that of version 2.
constexpr UINT TTN_NEEDTEXTA = 0xFFFFFDF8;

struct NMHDR {
  HWND hwndFrom;
  UINT_PTR idFrom;
  UINT code;
};

struct NMTTDISPINFOA {
  NMHDR hdr;
  LPSTR lpszText;
  char szText[80];
  HINSTANCE hinst;
  UINT uFlags;
  LPARAM lParam;
};

struct TOOLINFOA {
  UINT cbSize;
  UINT uFlags;
  HWND hwnd;
  UINT_PTR uId;
  RECT rect;
  HINSTANCE hinst;
  LPSTR lpszText;
  LPARAM lParam;
  LPVOID lpReserved;
};
constexpr UINT TTTOOLINFOA_V2_SIZE = offsetof(TOOLINFOA, lpReserved);

/** Does nothing: the controls are always there. */
void InitCommonControls();
