#include "platform/portable/window/controls.h"

#include "platform/portable/desktop.h"
#include "platform/portable/paint/gdi.h"
#include "platform/portable/paint/objects.h"
#include "platform/portable/window/window_record.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

namespace {

constexpr uint32_t Light = 0xFFFFFF, Shadow = 0x808080, Edge = 0x000000;

bool Is_Enabled(HWND window) { return (window->style & WS_DISABLED) == 0; }

/* ---- Button --------------------------------------------------------------------------------------------------------------- */

/** A frame one pixel wide, with one colour for top and left, and another for bottom and right. */
void Draw_Frame(const PixelView& view, int32_t inset, uint32_t upper, uint32_t lower) {
  const RECT frame{inset, inset, view.width - inset, view.height - inset};
  Fill_Pixels(view, {frame.left, frame.top, frame.right, frame.top + 1}, upper);
  Fill_Pixels(view, {frame.left, frame.top, frame.left + 1, frame.bottom}, upper);
  Fill_Pixels(view, {frame.left, frame.bottom - 1, frame.right, frame.bottom}, lower);
  Fill_Pixels(view, {frame.right - 1, frame.top, frame.right, frame.bottom}, lower);
}

/** The picture in the middle; on a disabled button all that differs from the face is grey. */
void Draw_Face(const PixelView& view, const HWND button) {
  const HBITMAP face = button->face;
  const int32_t shift = button->pressed ? 1 : 0;
  const int32_t left = (view.width - face->width) / 2 + shift, top = (view.height - face->height) / 2 + shift;
  for (int32_t y = 0; y < face->height; ++y) {
    for (int32_t x = 0; x < face->width; ++x) {
      uint8_t* const at = Pixel_At(view, left + x, top + y);
      if (!at) continue;
      uint32_t color = face->colors[static_cast<size_t>(y) * static_cast<size_t>(face->width) + static_cast<size_t>(x)];
      if (!Is_Enabled(button) && color != ButtonFace) color = Shadow;
      Store_Pixel(at, view.format.bits, Pixel_From_Color(view.format, color));
    }
  }
}

void Paint_Button(HWND button) {
  PAINTSTRUCT paint;
  if (!BeginPaint(button, &paint)) return;
  const PixelView view = Window_View(button);
  if (view.pixels && Window_Shows(button)) {
    Fill_Pixels(view, {0, 0, view.width, view.height}, ButtonFace);
    Draw_Frame(view, 0, button->pressed ? Edge : Light, button->pressed ? Light : Edge);
    Draw_Frame(view, 1, button->pressed ? Shadow : ButtonFace, button->pressed ? ButtonFace : Shadow);
    if (button->face) Draw_Face(view, button);
    paint.hdc->changed = true;
  }
  EndPaint(button, &paint);
}

void Press_Button(HWND button, bool pressed) {
  button->pressed = pressed;
  InvalidateRect(button, nullptr, FALSE);
  if (Window_Shows(button)) SendMessageA(button, WM_PAINT, 0, 0);
}

/** The mouse button is released at that place. */
void Release_Button(HWND button, LPARAM place) {
  if (!button->pressed) return;
  Press_Button(button, false);
  const auto x = static_cast<int16_t>(LOWORD(static_cast<uintptr_t>(place))),
             y = static_cast<int16_t>(HIWORD(static_cast<uintptr_t>(place)));
  if (!Is_Enabled(button) || x < 0 || y < 0 || x >= button->width || y >= button->height) return;
  SendMessageA(button->parent, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(button->id), BN_CLICKED),
               reinterpret_cast<LPARAM>(button));
}

LRESULT Button_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT:
      Paint_Button(window);
      return 0;
    case WM_ENABLE:
      Press_Button(window, false);
      return 0;
    case WM_LBUTTONDOWN:
      if (Is_Enabled(window)) Press_Button(window, true);
      return 0;
    case WM_LBUTTONUP:
      Release_Button(window, lParam);
      return 0;
    case BM_SETIMAGE: {
      if (wParam != IMAGE_BITMAP) return 0;
      const HBITMAP before = window->face;
      window->face = reinterpret_cast<HBITMAP>(lParam);
      InvalidateRect(window, nullptr, FALSE);
      return reinterpret_cast<LRESULT>(before);
    }
    default:
      return DefWindowProcA(window, message, wParam, lParam);
  }
}

/* ---- Tooltip -------------------------------------------------------------------------------------------------------------- */

/** A character's cell, the space around the text, which has the frame in it, and the most characters shown. */
constexpr int32_t CellWidth = 8, CellHeight = 15, BesideText = 5, AboveText = 3;
constexpr size_t MostCharacters = 100;
constexpr uint32_t LightYellow = 0xFFFFE1;

void Paint_Tooltip(HWND tooltip) {
  PAINTSTRUCT paint;
  if (!BeginPaint(tooltip, &paint)) return;
  const PixelView view = Window_View(tooltip);
  const HFONT font = CreateFontA(CellHeight, CellWidth, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, nullptr);
  if (view.pixels && Window_Shows(tooltip) && font) {
    Fill_Pixels(view, {0, 0, view.width, view.height}, LightYellow);
    Draw_Frame(view, 0, Edge, Edge);
    const HGDIOBJ before = SelectObject(paint.hdc, font);
    SetBkMode(paint.hdc, TRANSPARENT);
    TextOutA(paint.hdc, BesideText, AboveText, tooltip->title.c_str(), static_cast<int>(tooltip->title.size()));
    SelectObject(paint.hdc, before);
    paint.hdc->changed = true;
  }
  DeleteObject(font);
  EndPaint(tooltip, &paint);
}

LRESULT Tooltip_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_PAINT) {
    Paint_Tooltip(window);
    return 0;
  }
  if (message != TTM_ADDTOOLA) return DefWindowProcA(window, message, wParam, lParam);
  const auto* const tool = reinterpret_cast<const TOOLINFOA*>(lParam);
  if (!tool || tool->cbSize != TTTOOLINFOA_V2_SIZE) return FALSE;
  std::memcpy(&window->tool, tool, TTTOOLINFOA_V2_SIZE);
  return TRUE;
}

std::string Ask_Text(HWND tooltip) {
  const TOOLINFOA& tool = tooltip->tool;
  if (tool.lpszText != LPSTR_TEXTCALLBACKA) return tool.lpszText ? tool.lpszText : "";
  NMTTDISPINFOA asked = {};
  asked.hdr = {tooltip, tool.uId, TTN_NEEDTEXTA};
  asked.lpszText = asked.szText;
  asked.uFlags = tool.uFlags;
  SendMessageA(tool.hwnd, WM_NOTIFY, tool.uId, reinterpret_cast<LPARAM>(&asked));
  return asked.lpszText ? asked.lpszText : "";
}

HWND Tooltip_Of(HWND window) {
  for (HWND tooltip : allWindows)
    if (tooltip->tool.cbSize != 0 && tooltip->tool.hwnd == window) return tooltip;
  return nullptr;
}

}  // namespace

const WNDCLASSA* Control_Class(LPCSTR name) {
  static const WNDCLASSA button = {0, Button_Proc, 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr},
                         tooltip = {0, Tooltip_Proc, 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
  if (!name) return nullptr;
  if (strcasecmp(name, TOOLTIPS_CLASSA) == 0) return &tooltip;
  return strcasecmp(name, "Button") == 0 ? &button : nullptr;
}

bool Is_Tooltip(HWND window) { return window->proc == Tooltip_Proc; }

void InitCommonControls() {}

std::string Tooltip_Text(HWND window) {
  const HWND tooltip = Tooltip_Of(window);
  return tooltip ? Ask_Text(tooltip) : "";
}

HWND Screen_Open_Tooltip(HWND window, const RECT& area) {
  const std::string text = Tooltip_Text(window).substr(0, MostCharacters);
  const HWND tooltip = Tooltip_Of(window);
  if (text.empty() || !tooltip) return nullptr;
  tooltip->title = text;
  const int32_t width = 2 * BesideText + CellWidth * static_cast<int32_t>(text.size()), height = 2 * AboveText + CellHeight;
  const POINT origin = Window_Origin(window);
  const int32_t left = origin.x + (window->width - width) / 2, top = origin.y + window->height;
  MoveWindow(tooltip, std::max(std::min(left, area.right - width), area.left),
             std::max(std::min(top, area.bottom - height), area.top), width, height, TRUE);
  ShowWindow(tooltip, SW_SHOW);
  SendMessageA(tooltip, WM_PAINT, 0, 0);
  return tooltip;
}

void Screen_Close_Tooltip(HWND tooltip) {
  if (Screen_Is_Tooltip(tooltip)) ShowWindow(tooltip, SW_HIDE);
}

bool Screen_Is_Tooltip(HWND window) { return Window_Find(window) && Is_Tooltip(window); }
