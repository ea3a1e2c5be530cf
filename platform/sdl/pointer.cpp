#include "platform/sdl/pointer.h"

#include "platform/portable/window/resource.h"
#include "platform/sdl/cursor_file.h"

#include <map>
#include <utility>

/** Milliseconds of rest after which a tooltip opens, and for which it stays. */
static constexpr uint32_t RestTime = 500, ShownTime = 5000;

static struct {
  HWND window;     ///< Where the pointer rests; null when no tooltip is to open.
  POINT point;     ///< The place on the screen.
  uint32_t since;  ///< When the pointer stopped, or when the tooltip opened.
  HWND tooltip;    ///< The one that is open, or null.
} rest;

static struct {
  HWND window;  ///< While a button is down: the one that got the first press.
  uint32_t buttons;
} pressed;

static std::map<uintptr_t, SDL_Cursor*> cursors;

/* ---- Places --------------------------------------------------------------------------------------------------------------- */

/** From screen coordinates to those of a window's client area. */
static POINT In_Client(HWND window, const POINT& point) {
  POINT origin = {};
  ClientToScreen(window, &origin);
  return {point.x - origin.x, point.y - origin.y};
}

/** The window there that takes input: the topmost one, or if it or a parent is disabled, the nearest parent above those. Null
 * outside, and if the top-level window is disabled. */
static HWND Window_At(HWND top, const POINT& point) {
  HWND found = nullptr;
  for (const ScreenPart& part : Screen_Parts(top)) {
    const bool within =
        point.x >= part.seen.left && point.x < part.seen.right && point.y >= part.seen.top && point.y < part.seen.bottom;
    if (within) found = part.window;
  }
  for (HWND window = found; window; window = window == top ? nullptr : GetParent(window)) {
    if (!IsWindowEnabled(window)) found = window == top ? nullptr : GetParent(window);
  }
  return found;
}

/* ---- Tooltip -------------------------------------------------------------------------------------------------------------- */

static void Close_Tooltip() { Screen_Close_Tooltip(std::exchange(rest.tooltip, nullptr)); }

void Pointer_Ignored() {
  rest.window = nullptr;
  Close_Tooltip();
}

static HWND Open_Tooltip(HWND window) {
  const HWND top = Top_Of(window);
  const ShownWindow* const shown = Shown_As(top);
  SDL_Rect screen;
  if (!shown || !IsWindowEnabled(top)) return nullptr;
  if (SDL_GetDisplayUsableBounds(SDL_GetWindowDisplayIndex(shown->real), &screen) != 0) return nullptr;
  return Screen_Open_Tooltip(window, {screen.x, screen.y, screen.x + screen.w, screen.y + screen.h});
}

uint32_t Pointer_Rests() {
  const uint32_t elapsed = SDL_GetTicks() - rest.since;
  if (rest.tooltip && elapsed < ShownTime) return ShownTime - elapsed;
  if (rest.tooltip) Close_Tooltip();
  if (!rest.window) return UINT32_MAX;
  if (elapsed < RestTime) return RestTime - elapsed;
  // Only once: the next tooltip needs another motion.
  rest.tooltip = Open_Tooltip(std::exchange(rest.window, nullptr));
  rest.since = SDL_GetTicks();
  return rest.tooltip ? ShownTime : UINT32_MAX;
}

/* ---- Motion and buttons --------------------------------------------------------------------------------------------------- */

void Pointer_Moved(const ShownWindow& shown, const SDL_MouseMotionEvent& event) {
  const HWND window = Window_At(shown.portable, {event.x, event.y});
  POINT point = {event.x, event.y};
  ClientToScreen(shown.portable, &point);
  // A window that opens under the pointer, such as the tooltip, is no motion.
  if (point.x != rest.point.x || point.y != rest.point.y) {
    Close_Tooltip();
    rest = {.window = pressed.window ? nullptr : window, .point = point, .since = SDL_GetTicks(), .tooltip = nullptr};
  }
  const LRESULT handled =
      window ? SendMessageA(window, WM_SETCURSOR, reinterpret_cast<WPARAM>(window), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)) : 0;
  if (!handled) SetCursor(LoadCursorA(nullptr, IDC_ARROW));
}

void Pointer_Button(const ShownWindow& shown, const SDL_MouseButtonEvent& event) {
  const bool down = event.type == SDL_MOUSEBUTTONDOWN, left = event.button == SDL_BUTTON_LEFT;
  if (!left && event.button != SDL_BUTTON_RIGHT) return;
  Pointer_Ignored();
  const uint32_t bit = SDL_BUTTON(event.button);
  // A release that went to another program must not keep the pointer captured.
  if (!IsWindow(pressed.window) || (down && (pressed.buttons & bit))) pressed = {};
  POINT point = {event.x, event.y};
  const HWND window = pressed.window ? pressed.window : Window_At(shown.portable, point);
  pressed.buttons = down ? pressed.buttons | bit : pressed.buttons & ~bit;
  pressed.window = pressed.buttons ? window : nullptr;
  if (!window || !IsWindowEnabled(Top_Of(window))) {
    if (down) Window_Raise(Active_Window(shown.portable));
    return;
  }
  ClientToScreen(shown.portable, &point);
  point = In_Client(window, point);
  const UINT message = left ? (down ? WM_LBUTTONDOWN : WM_LBUTTONUP) : (down ? WM_RBUTTONDOWN : WM_RBUTTONUP);
  PostMessageA(window, message, 0, MAKELPARAM(point.x, point.y));
}

/* ---- Cursor --------------------------------------------------------------------------------------------------------------- */

void Pointer_Show_Cursor() {
  const uintptr_t number = Screen_Cursor();
  SDL_ShowCursor(number != 0 ? SDL_ENABLE : SDL_DISABLE);
  if (number == 0) return;
  SDL_Cursor*& cursor = cursors[number];
  if (!cursor) cursor = Cursor_From_File(Screen_Cursor_File());
  if (!cursor) cursor = SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_ARROW);
  if (cursor) SDL_SetCursor(cursor);
}

void Pointer_Stop() {
  for (const auto& [number, cursor] : cursors) SDL_FreeCursor(cursor);
  cursors.clear();
  rest = {};
  pressed = {};
}
