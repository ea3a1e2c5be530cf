#include "platform/sdl/shown_windows.h"

#include <algorithm>
#include <utility>
#include <vector>

/** In the order of their creation. */
static std::vector<ShownWindow> shownWindows;

static ShownWindow* Find_Shown(HWND portable) {
  const auto found = std::ranges::find(shownWindows, portable, &ShownWindow::portable);
  return found == shownWindows.end() ? nullptr : &*found;
}

const ShownWindow* Shown_As(HWND portable) { return Find_Shown(portable); }

const ShownWindow* Shown_By(uint32_t id) {
  const auto found = std::ranges::find(shownWindows, SDL_GetWindowFromID(id), &ShownWindow::real);
  return found == shownWindows.end() ? nullptr : &*found;
}

static DWORD Style_Of(HWND window) { return static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)); }

HWND Top_Of(HWND window) {
  while (window && (Style_Of(window) & WS_CHILD)) window = GetParent(window);
  return window;
}

/** The top-level window that a dialog or tooltip belongs to, or null. */
static HWND Owner_Of(HWND window) { return (Style_Of(window) & WS_POPUP) ? Top_Of(GetParent(window)) : nullptr; }

HWND Active_Window(HWND top) {
  if (IsWindowEnabled(top)) return top;
  for (auto shown = shownWindows.rbegin(); shown != shownWindows.rend(); ++shown) {
    const HWND dialog = shown->portable;
    if (Owner_Of(dialog) == top && IsWindowVisible(dialog) && !Screen_Is_Tooltip(dialog)) return Active_Window(dialog);
  }
  return top;
}

void Window_Raise(HWND top) {
  if (const ShownWindow* const shown = Shown_As(top)) SDL_RaiseWindow(shown->real);
}

/* ---- Pixels --------------------------------------------------------------------------------------------------------------- */

static SDL_Rect To_Sdl(const RECT& rect) { return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top}; }

/** Copies that part of a window's client area to a place of the target, in the target's format. */
static void Copy_Part(HWND window, const RECT& part, SDL_Rect place, SDL_Surface* target) {
  if (target->format->format == SDL_PIXELFORMAT_RGB888 && !SDL_MUSTLOCK(target)) {
    auto* const row = static_cast<uint8_t*>(target->pixels) + ptrdiff_t{place.y} * target->pitch;
    Screen_Copy_Colors(window, part, reinterpret_cast<uint32_t*>(row) + place.x, target->pitch);
    return;
  }
  static std::vector<uint32_t> colors;
  colors.resize(static_cast<size_t>(place.w) * static_cast<size_t>(place.h));
  Screen_Copy_Colors(window, part, colors.data(), ptrdiff_t{4} * place.w);
  SDL_Surface* const source =
      SDL_CreateRGBSurfaceWithFormatFrom(colors.data(), place.w, place.h, 32, 4 * place.w, SDL_PIXELFORMAT_RGB888);
  if (!source) return;
  SDL_SetSurfaceBlendMode(source, SDL_BLENDMODE_NONE);
  SDL_BlitSurface(source, nullptr, target, &place);
  SDL_FreeSurface(source);
}

/** Copies a window's own pixels, limited to what has changed and what is seen of it. */
static void Show_Part(const ScreenPart& part, const SDL_Rect& changed, SDL_Surface* target) {
  const SDL_Rect seen = To_Sdl(part.seen);
  SDL_Rect place;
  if (!SDL_IntersectRect(&seen, &changed, &place)) return;
  const LONG left = place.x - part.place.left, top = place.y - part.place.top;
  Copy_Part(part.window, {left, top, left + place.w, top + place.h}, place, target);
}

static bool Covers(const RECT& seen, const SDL_Rect& changed) {
  return seen.left <= changed.x && seen.top <= changed.y && seen.right >= changed.x + changed.w &&
         seen.bottom >= changed.y + changed.h;
}

/** Copies the windows in a part of the client area, starting with the last one that covers it all. */
static void Show_Area(const ShownWindow& shown, SDL_Rect changed) {
  const std::vector<ScreenPart> parts = Screen_Parts(shown.portable);
  SDL_Surface* const target = parts.empty() ? nullptr : SDL_GetWindowSurface(shown.real);
  if (!target || !SDL_IntersectRect(&changed, &target->clip_rect, &changed)) return;
  auto first =
      std::find_if(parts.rbegin(), parts.rend(), [&](const ScreenPart& part) { return Covers(part.seen, changed); }).base();
  if (first == parts.begin()) {
    SDL_FillRect(target, &changed, 0);
  } else {
    --first;
  }
  for (; first != parts.end(); ++first) Show_Part(*first, changed, target);
  SDL_UpdateWindowSurfaceRects(shown.real, &changed, 1);
}

void Mark_Changed(const ShownWindow& shown) {
  int width = 0, height = 0;
  SDL_GetWindowSize(shown.real, &width, &height);
  Find_Shown(shown.portable)->changed = {0, 0, width, height};
}

void Show_Changes() {
  for (ShownWindow& shown : shownWindows) {
    const SDL_Rect changed = std::exchange(shown.changed, {});
    if (!SDL_RectEmpty(&changed)) Show_Area(shown, changed);
  }
}

static void Pixels_Changed(HWND window) {
  const HWND top = Top_Of(window);
  ShownWindow* const shown = Find_Shown(top);
  if (!shown) return;
  if (window == top) return Mark_Changed(*shown);
  const std::vector<ScreenPart> parts = Screen_Parts(top);
  const auto part = std::ranges::find(parts, window, &ScreenPart::window);
  if (part == parts.end()) return;
  const SDL_Rect before = shown->changed, seen = To_Sdl(part->seen);
  SDL_UnionRect(&before, &seen, &shown->changed);
}

/* ---- From the portable window to SDL's ------------------------------------------------------------------------------------ */

static RECT Place_Of(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  return place;
}

static uint32_t Flags_Of(HWND window, HWND owner) {
  if (Screen_Is_Tooltip(window)) return SDL_WINDOW_TOOLTIP | SDL_WINDOW_BORDERLESS | SDL_WINDOW_SKIP_TASKBAR;
  return owner ? SDL_WINDOW_BORDERLESS | SDL_WINDOW_SKIP_TASKBAR : SDL_WINDOW_RESIZABLE;
}

/** An owned window opens at its place, another where the desktop puts it. */
static ShownWindow* Make_Real(HWND window) {
  const HWND owner = Owner_Of(window);
  const RECT place = Place_Of(window);
  const int x = owner ? place.left : int{SDL_WINDOWPOS_UNDEFINED}, y = owner ? place.top : int{SDL_WINDOWPOS_UNDEFINED};
  SDL_Window* const real = SDL_CreateWindow("", x, y, std::max(place.right - place.left, 1),
                                            std::max(place.bottom - place.top, 1), SDL_WINDOW_HIDDEN | Flags_Of(window, owner));
  if (!real) return nullptr;
  if (const ShownWindow* const above = Shown_As(owner)) SDL_SetWindowModalFor(real, above->real);
  shownWindows.push_back({.portable = window, .real = real, .agreed = place});
  if (!owner) Follow_Place(shownWindows.back());
  return &shownWindows.back();
}

static bool Is_Full(const ShownWindow& shown) { return SDL_GetWindowFlags(shown.real) & SDL_WINDOW_FULLSCREEN; }

/** Width of the frame at the left and top. */
static POINT Frame_Of(const ShownWindow& shown) {
  int top = 0, left = 0;
  SDL_GetWindowBordersSize(shown.real, &top, &left, nullptr, nullptr);
  return {left, top};
}

static void Take_Place(ShownWindow* shown) {
  const RECT place = Place_Of(shown->portable), agreed = shown->agreed;
  const int width = place.right - place.left, height = place.bottom - place.top;
  shown->agreed = place;
  if (width > 0 && height > 0 && (width != agreed.right - agreed.left || height != agreed.bottom - agreed.top)) {
    SDL_SetWindowSize(shown->real, width, height);
  }
  if (place.left == agreed.left && place.top == agreed.top) return;
  // Just after the full screen SDL doesn't know of the frame yet, and counts the place from the frame's corner.
  const POINT frame = Frame_Of(*shown), missing = {shown->frame.x - frame.x, shown->frame.y - frame.y};
  const POINT less = shown->wasFull ? missing : POINT{};
  shown->wasFull = false;
  SDL_SetWindowPosition(shown->real, place.left - less.x, place.top - less.y);
}

/** Changes between window and full screen. Place and size are set first: without a window manager nobody else does. */
static void Take_Style(ShownWindow* shown) {
  const bool full = (Style_Of(shown->portable) & WS_POPUP) && !Owner_Of(shown->portable);
  if (full && !Is_Full(*shown)) {
    shown->frame = Frame_Of(*shown);
    shown->wasFull = true;
    SDL_SetWindowPosition(shown->real, 0, 0);
    SDL_SetWindowSize(shown->real, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    SDL_SetWindowFullscreen(shown->real, SDL_WINDOW_FULLSCREEN_DESKTOP);
  }
  if (!full && Is_Full(*shown)) SDL_SetWindowFullscreen(shown->real, 0);
  if (full) shown->agreed = Place_Of(shown->portable);
  if (!full) Take_Place(shown);
}

/** Without a window manager, keys go to the window shown last, even a tooltip, and nowhere once that is hidden. */
static void Show_Real(const ShownWindow& shown) {
  SDL_Window* const keys = SDL_GetKeyboardFocus();
  SDL_ShowWindow(shown.real);
  if (keys && Screen_Is_Tooltip(shown.portable)) SDL_SetWindowInputFocus(keys);
}

static void Hide_Real(const ShownWindow& shown, HWND owner) {
  const bool hadKeys = SDL_GetKeyboardFocus() == shown.real;
  SDL_HideWindow(shown.real);
  const ShownWindow* const next = hadKeys ? Shown_As(owner) : nullptr;
  const uint32_t flags = next ? SDL_GetWindowFlags(next->real) : 0;
  if ((flags & SDL_WINDOW_SHOWN) && !(flags & SDL_WINDOW_MINIMIZED)) SDL_SetWindowInputFocus(next->real);
}

static void Take_Visibility(const ShownWindow& shown) {
  const bool visible = IsWindowVisible(shown.portable);
  const bool shows = SDL_GetWindowFlags(shown.real) & SDL_WINDOW_SHOWN;
  if (visible && !shows) Show_Real(shown);
  if (!visible && shows) Hide_Real(shown, Owner_Of(shown.portable));
}

static void Window_Created(HWND window) {
  if (!(Style_Of(window) & WS_CHILD)) Make_Real(window);
}

static void Window_Changed(HWND window) {
  const HWND top = Top_Of(window);
  ShownWindow* shown = Find_Shown(top);
  if (window != top) {
    if (shown) Mark_Changed(*shown);
    return;
  }
  // Most tooltips are never seen.
  if (!shown && Screen_Is_Tooltip(window) && IsWindowVisible(window)) shown = Make_Real(window);
  if (!shown || IsIconic(window)) return;
  char title[512] = "";
  GetWindowTextA(window, title, sizeof title);
  SDL_SetWindowTitle(shown->real, title);
  Take_Style(shown);
  Take_Visibility(*shown);
}

static void Window_Destroyed(HWND window) {
  const HWND top = Top_Of(window);
  const ShownWindow* const shown = Shown_As(top);
  if (shown && window != top) Mark_Changed(*shown);
  if (!shown || window != top) return;
  Hide_Real(*shown, Owner_Of(window));
  SDL_DestroyWindow(shown->real);
  shownWindows.erase(shownWindows.begin() + (shown - shownWindows.data()));
}

void Windows_Hook_In(ScreenDesktop* desktop) {
  desktop->windowCreated = Window_Created;
  desktop->windowChanged = Window_Changed;
  desktop->pixelsChanged = Pixels_Changed;
  desktop->windowDestroyed = Window_Destroyed;
}

/* ---- From SDL's window to the portable one -------------------------------------------------------------------------------- */

void Follow_Place(const ShownWindow& given) {
  ShownWindow* const shown = Find_Shown(given.portable);
  if (Is_Full(*shown) || IsIconic(shown->portable)) return;
  int x = 0, y = 0;
  SDL_GetWindowPosition(shown->real, &x, &y);
  Screen_Move(shown->portable, x, y);
  OffsetRect(&shown->agreed, x - shown->agreed.left, y - shown->agreed.top);
}

void Follow_Size(const ShownWindow& given) {
  ShownWindow* const shown = Find_Shown(given.portable);
  RECT client = {};
  GetClientRect(shown->portable, &client);
  int width = 0, height = 0;
  SDL_GetWindowSize(shown->real, &width, &height);
  shown->agreed.right = shown->agreed.left + width;
  shown->agreed.bottom = shown->agreed.top + height;
  if (width != client.right || height != client.bottom) Screen_Resize_Client(shown->portable, width, height);
}
