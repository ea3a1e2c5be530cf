#include "platform/portable/window/window.h"

#include "platform/portable/paint/gdi.h"
#include "platform/portable/paint/screen.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window_record.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>

std::vector<HWND> allWindows;

namespace {

std::map<std::string, WNDCLASSA> windowClasses;

constexpr int32_t DefaultPlace = 64, DefaultWidth = 640, DefaultHeight = 480;
/** Left and top of a minimised window. */
constexpr LONG MinimisedPlace = -32000;

const WNDCLASSA* Find_Class(LPCSTR name) {
  const auto entry = windowClasses.find(name ? name : "");
  return entry == windowClasses.end() ? Control_Class(name) : &entry->second;
}

bool Has_Style(HWND window, DWORD style) { return (window->style & style) != 0; }

RECT Normal_Position(HWND window) {
  const POINT origin = Window_Origin(window);
  return {origin.x, origin.y, origin.x + window->width, origin.y + window->height};
}

/** A window gets its first WM_SIZE when it is shown for the first time. */
void Show_First(HWND window) {
  if (window->shownOnce) return;
  window->shownOnce = true;
  SendMessageA(window, WM_SIZE, SIZE_RESTORED, Window_Size_Param(window));
}

void Set_Visible(HWND window, bool visible) {
  if (Has_Style(window, WS_VISIBLE) == visible) return;
  window->style ^= WS_VISIBLE;
  if (visible) InvalidateRect(window, nullptr, TRUE);
  Desktop_Window_Changed(window);
}

void End_Window(HWND window) {
  SendMessageA(window, WM_DESTROY, 0, 0);
  const std::vector<HWND> others = allWindows;
  for (HWND child : others)
    if (Window_Find(child) && (child->parent == window || child->owner == window)) DestroyWindow(child);
  Desktop_Window_Destroyed(window);
  Messages_Forget(window);
  std::erase(allWindows, window);
  delete window;
  Object_Ended();
}

}  // namespace

HWND Window_Find(HWND window) {
  return window && std::find(allWindows.begin(), allWindows.end(), window) != allWindows.end() ? window : nullptr;
}

bool Window_Shows(HWND window) {
  for (; window; window = window->parent)
    if (!Has_Style(window, WS_VISIBLE) || window->minimised) return false;
  return true;
}

POINT Window_Origin(HWND window) {
  POINT origin{0, 0};
  for (; window; window = window->parent) {
    origin.x += window->x;
    origin.y += window->y;
  }
  return origin;
}

HWND Window_Top(HWND window) {
  while (window && window->parent) window = window->parent;
  return window;
}

PixelView Window_View(HWND window) {
  uint8_t* pixels = window->pixels.empty() ? nullptr : window->pixels.data();
  return {pixels, window->width, window->height, window->pitch, Screen_Format()};
}

void Window_Make_Pixels(HWND window) {
  window->pitch = (window->width * Screen_Format().bits / 8 + 3) & ~3;
  window->pixels.assign(static_cast<size_t>(window->pitch) * static_cast<size_t>(window->height), 0);
}

void Window_Resize(HWND window, int32_t width, int32_t height) {
  window->width = std::max(width, 0);
  window->height = std::max(height, 0);
  Window_Make_Pixels(window);
  InvalidateRect(window, nullptr, TRUE);
  Desktop_Window_Changed(window);
}

void Window_Set_Minimised(HWND window, bool minimised) {
  window->minimised = minimised;
  if (!minimised) InvalidateRect(window, nullptr, TRUE);
  Desktop_Window_Changed(window);
}

LPARAM Window_Size_Param(HWND window) {
  if (window->minimised) return 0;
  return MAKELPARAM(static_cast<uintptr_t>(window->width), static_cast<uintptr_t>(window->height));
}

ATOM RegisterClassA(const WNDCLASSA* windowClass) {
  if (!windowClass || !windowClass->lpszClassName || !windowClass->lpfnWndProc) return 0;
  windowClasses[windowClass->lpszClassName] = *windowClass;
  return static_cast<ATOM>(windowClasses.size());
}

HWND CreateWindowExA(DWORD, LPCSTR className, LPCSTR title, DWORD style, int x, int y, int width, int height, HWND parent,
                     HMENU menu, HINSTANCE instance, LPVOID) {
  const WNDCLASSA* const type = Find_Class(className);
  const bool child = (style & WS_CHILD) != 0;
  const bool fits = parent ? Window_Find(parent) != nullptr : !child;
  if (!type || !fits) return nullptr;
  HWND window = new (std::nothrow) HWND__{};
  if (!window) return nullptr;
  window->proc = type->lpfnWndProc;
  window->background = type->hbrBackground;
  window->parent = child ? parent : nullptr;
  window->owner = child ? nullptr : parent;
  window->instance = instance;
  window->id = child ? static_cast<int>(reinterpret_cast<uintptr_t>(menu)) : 0;
  window->style = style & ~WS_VISIBLE;
  window->title = title ? title : "";
  window->x = x == CW_USEDEFAULT ? DefaultPlace : x;
  window->y = x == CW_USEDEFAULT || y == CW_USEDEFAULT ? DefaultPlace : y;
  window->width = width == CW_USEDEFAULT ? DefaultWidth : std::clamp(width, 0, int{INT16_MAX});
  window->height = width == CW_USEDEFAULT || height == CW_USEDEFAULT ? DefaultHeight : std::clamp(height, 0, int{INT16_MAX});
  if (Is_Tooltip(window)) {
    window->style |= WS_POPUP;
    window->width = window->height = 0;
  }
  Window_Make_Pixels(window);
  allWindows.push_back(window);
  Object_Made();
  if (!Is_Tooltip(window)) Desktop_Window_Created(window);
  if (style & WS_VISIBLE) ShowWindow(window, SW_SHOW);
  return Window_Find(window);
}

BOOL DestroyWindow(HWND window) {
  if (!Window_Find(window) || window->ending) return FALSE;
  window->ending = true;
  End_Window(window);
  return TRUE;
}

BOOL ShowWindow(HWND window, int command) {
  if (!Window_Find(window)) return FALSE;
  const bool before = Has_Style(window, WS_VISIBLE);
  const bool minimised = command == SW_MINIMIZE || (command == SW_SHOW && window->minimised);
  Set_Visible(window, command != SW_HIDE);
  if (command == SW_HIDE) return before;
  if (window->minimised != minimised) {
    Window_Set_Minimised(window, minimised);
    window->shownOnce = true;
    SendMessageA(window, WM_SIZE, minimised ? SIZE_MINIMIZED : SIZE_RESTORED, Window_Size_Param(window));
  } else {
    Show_First(window);
  }
  return before;
}

BOOL IsWindow(HWND window) { return Window_Find(window) != nullptr; }

BOOL IsWindowVisible(HWND window) {
  if (!Window_Find(window)) return FALSE;
  for (; window; window = window->parent)
    if (!Has_Style(window, WS_VISIBLE)) return FALSE;
  return TRUE;
}

BOOL IsIconic(HWND window) { return Window_Find(window) && window->minimised; }
BOOL IsWindowEnabled(HWND window) { return Window_Find(window) && !Has_Style(window, WS_DISABLED); }

HWND GetParent(HWND window) {
  if (!Window_Find(window)) return nullptr;
  if (Has_Style(window, WS_CHILD)) return window->parent;
  return Has_Style(window, WS_POPUP) ? window->owner : nullptr;
}

BOOL EnableWindow(HWND window, BOOL enable) {
  if (!Window_Find(window)) return FALSE;
  const bool wasDisabled = Has_Style(window, WS_DISABLED);
  window->style = enable ? window->style & ~WS_DISABLED : window->style | WS_DISABLED;
  if (wasDisabled == (enable != 0)) SendMessageA(window, WM_ENABLE, enable != 0, 0);
  return wasDisabled;
}

BOOL SetWindowTextA(HWND window, LPCSTR text) {
  if (!Window_Find(window)) return FALSE;
  window->title = text ? text : "";
  Desktop_Window_Changed(window);
  return TRUE;
}

int GetWindowTextA(HWND window, LPSTR text, int size) {
  if (!Window_Find(window) || size < 1) return 0;
  const size_t length = window->title.copy(text, static_cast<size_t>(size - 1));
  text[length] = 0;
  return static_cast<int>(length);
}

BOOL GetClientRect(HWND window, RECT* rect) {
  if (!Window_Find(window)) return FALSE;
  *rect = {0, 0, window->minimised ? 0 : window->width, window->minimised ? 0 : window->height};
  return TRUE;
}

BOOL GetWindowRect(HWND window, RECT* rect) {
  if (!Window_Find(window)) return FALSE;
  *rect = Normal_Position(window);
  if (window->minimised) *rect = {MinimisedPlace, MinimisedPlace, MinimisedPlace, MinimisedPlace};
  return TRUE;
}

BOOL ClientToScreen(HWND window, POINT* point) {
  if (!Window_Find(window)) return FALSE;
  const POINT origin = window->minimised ? POINT{MinimisedPlace, MinimisedPlace} : Window_Origin(window);
  point->x += origin.x;
  point->y += origin.y;
  return TRUE;
}

BOOL SetWindowPos(HWND window, HWND, int x, int y, int width, int height, UINT flags) {
  if (!Window_Find(window)) return FALSE;
  if (!(flags & SWP_NOMOVE)) window->x = x, window->y = y;
  const bool resized = !(flags & SWP_NOSIZE) && (width != window->width || height != window->height);
  if (resized) {
    Window_Resize(window, std::min(width, int{INT16_MAX}), std::min(height, int{INT16_MAX}));
    SendMessageA(window, WM_SIZE, SIZE_RESTORED, Window_Size_Param(window));
  } else {
    Desktop_Window_Changed(window);
  }
  if (flags & SWP_SHOWWINDOW) ShowWindow(window, SW_SHOW);
  return TRUE;
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) {
  if (!SetWindowPos(window, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE)) return FALSE;
  if (repaint) InvalidateRect(window, nullptr, TRUE);
  return TRUE;
}

LONG_PTR GetWindowLongPtrA(HWND window, int index) {
  if (!Window_Find(window)) return 0;
  if (index == GWLP_HINSTANCE) return reinterpret_cast<LONG_PTR>(window->instance);
  if (index == GWL_STYLE) return static_cast<LONG_PTR>(window->style);
  if (index == GWLP_USERDATA) return window->userData;
  return index == GWLP_WNDPROC ? reinterpret_cast<LONG_PTR>(window->proc) : 0;
}

LONG_PTR SetWindowLongPtrA(HWND window, int index, LONG_PTR value) {
  const LONG_PTR before = GetWindowLongPtrA(window, index);
  if (!Window_Find(window)) return 0;
  if (index == GWLP_USERDATA) window->userData = value;
  if (index == GWLP_WNDPROC) window->proc = reinterpret_cast<WNDPROC>(value);
  if (index == GWL_STYLE) {
    window->style = static_cast<DWORD>(value);
    Desktop_Window_Changed(window);
  }
  return before;
}

BOOL AdjustWindowRect(RECT*, DWORD, BOOL) { return TRUE; }

BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase) {
  if (!Window_Find(window)) return FALSE;
  const RECT client{0, 0, window->width, window->height};
  const RECT added = rect ? Rect_Common(*rect, client) : client;
  if (Rect_Is_Empty(added)) return TRUE;
  RECT& invalid = window->invalid;
  invalid = Rect_Is_Empty(invalid) ? added
                                   : RECT{std::min(invalid.left, added.left), std::min(invalid.top, added.top),
                                          std::max(invalid.right, added.right), std::max(invalid.bottom, added.bottom)};
  window->eraseWanted |= erase != 0;
  return TRUE;
}

HDC BeginPaint(HWND window, PAINTSTRUCT* paint) {
  HDC dc = GetDC(Window_Find(window));
  if (!dc || !Window_Find(window)) return nullptr;
  *paint = {};
  paint->hdc = dc;
  paint->rcPaint = window->invalid;
  const bool erase = window->eraseWanted;
  window->invalid = {};
  window->eraseWanted = false;
  if (erase) paint->fErase = SendMessageA(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0) == 0;
  return dc;
}

BOOL EndPaint(HWND window, const PAINTSTRUCT* paint) { return ReleaseDC(window, paint->hdc); }

BOOL GetWindowPlacement(HWND window, WINDOWPLACEMENT* placement) {
  if (!Window_Find(window)) return FALSE;
  const UINT length = placement->length;
  *placement = {};
  placement->length = length;
  placement->showCmd = static_cast<UINT>(window->minimised ? SW_MINIMIZE : SW_SHOWNORMAL);
  placement->rcNormalPosition = Normal_Position(window);
  return TRUE;
}
