#include "platform/sdl/sdl_desktop.h"

#include "platform/portable/screen.h"
#include "platform/portable/window.h"

#include <SDL.h>

#include <algorithm>
#include <cctype>
#include <vector>

/** A portable window and the one that shows it. */
struct ShownWindow {
  HWND portable;
  SDL_Window* real;
  int x = 0, y = 0;  ///< Where the real one's frame was before it filled the screen.
};
static std::vector<ShownWindow> shownWindows;
/** Depth of the portable screen. */
static int32_t screenBits = 32;

static ShownWindow* Shown_As(HWND portable) {
  const auto found = std::ranges::find(shownWindows, portable, &ShownWindow::portable);
  return found == shownWindows.end() ? nullptr : &*found;
}

static ShownWindow* Shown_By(uint32_t id) {
  const auto found = std::ranges::find(shownWindows, SDL_GetWindowFromID(id), &ShownWindow::real);
  return found == shownWindows.end() ? nullptr : &*found;
}

static DWORD Style_Of(HWND window) { return static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)); }

/* ---- From the portable window to the desktop ------------------------------------------------------------ */

/** Copies the portable pixels to the desktop's window, which is black where they don't reach. */
static void Show_Pixels(HWND window) {
  const ShownWindow* const shown = Shown_As(window);
  if (!shown) return;
  int32_t width = 0, height = 0, pitch = 0;
  const uint8_t* pixels = Screen_Window_Pixels(window, &width, &height, &pitch);
  SDL_Surface* const target = SDL_GetWindowSurface(shown->real);
  if (!pixels || !target) return;
  static std::vector<uint32_t> converted;
  if (screenBits != 32) {
    Screen_Window_Colors(window, &converted);
    pixels = reinterpret_cast<const uint8_t*>(converted.data());
    pitch = 4 * width;
  }
  SDL_Surface* const source =
      SDL_CreateRGBSurfaceWithFormatFrom(const_cast<uint8_t*>(pixels), width, height, 32, pitch, SDL_PIXELFORMAT_RGB888);
  if (!source) return;
  SDL_SetSurfaceBlendMode(source, SDL_BLENDMODE_NONE);
  if (target->w > width || target->h > height) SDL_FillRect(target, nullptr, 0);
  SDL_BlitSurface(source, nullptr, target, nullptr);
  SDL_FreeSurface(source);
  SDL_UpdateWindowSurface(shown->real);
}

static void Window_Created(HWND window) {
  if (Style_Of(window) & WS_CHILD) return;
  RECT client = {};
  GetClientRect(window, &client);
  SDL_Window* const real = SDL_CreateWindow("", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, std::max(client.right, 1),
                                            std::max(client.bottom, 1), SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIDDEN);
  if (real) shownWindows.push_back({.portable = window, .real = real});
}

static void Take_Size(const ShownWindow& shown) {
  RECT client = {};
  GetClientRect(shown.portable, &client);
  int width = 0, height = 0;
  SDL_GetWindowSize(shown.real, &width, &height);
  if (client.right > 0 && client.bottom > 0 && (width != client.right || height != client.bottom)) {
    SDL_SetWindowSize(shown.real, client.right, client.bottom);
  }
}

/** Changes between window and full screen. Place and size are set first, for a desktop without a window manager sets neither. */
static void Take_Style(ShownWindow* shown) {
  const bool full = Style_Of(shown->portable) & WS_POPUP;
  const bool isFull = SDL_GetWindowFlags(shown->real) & SDL_WINDOW_FULLSCREEN;
  if (full && !isFull) {
    int left = 0, top = 0;
    SDL_GetWindowPosition(shown->real, &shown->x, &shown->y);
    SDL_GetWindowBordersSize(shown->real, &top, &left, nullptr, nullptr);
    shown->x -= left;
    shown->y -= top;
    SDL_SetWindowPosition(shown->real, 0, 0);
    SDL_SetWindowSize(shown->real, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    SDL_SetWindowFullscreen(shown->real, SDL_WINDOW_FULLSCREEN_DESKTOP);
  }
  if (!full && isFull) {
    SDL_SetWindowFullscreen(shown->real, 0);
    SDL_SetWindowPosition(shown->real, shown->x, shown->y);
  }
  if (!full) Take_Size(*shown);
}

static void Take_Visibility(const ShownWindow& shown) {
  const bool visible = IsWindowVisible(shown.portable);
  const bool shows = SDL_GetWindowFlags(shown.real) & SDL_WINDOW_SHOWN;
  if (visible && !shows) SDL_ShowWindow(shown.real);
  if (!visible && shows) SDL_HideWindow(shown.real);
}

static void Window_Changed(HWND window) {
  ShownWindow* const shown = Shown_As(window);
  if (!shown || IsIconic(window)) return;
  char title[512] = "";
  GetWindowTextA(window, title, sizeof title);
  SDL_SetWindowTitle(shown->real, title);
  Take_Style(shown);
  Take_Visibility(*shown);
}

static void Window_Destroyed(HWND window) {
  const ShownWindow* const shown = Shown_As(window);
  if (!shown) return;
  SDL_DestroyWindow(shown->real);
  shownWindows.erase(shownWindows.begin() + (shown - shownWindows.data()));
}

/* ---- From the desktop to the portable window ------------------------------------------------------------ */

static void On_Real_Size(const ShownWindow& shown) {
  RECT client = {};
  GetClientRect(shown.portable, &client);
  int width = 0, height = 0;
  SDL_GetWindowSize(shown.real, &width, &height);
  if (width != client.right || height != client.bottom) Screen_Resize_Client(shown.portable, width, height);
}

static void On_Window_Event(const ShownWindow& shown, uint8_t event) {
  switch (event) {
    case SDL_WINDOWEVENT_CLOSE:
      PostMessageA(shown.portable, WM_CLOSE, 0, 0);
      break;
    case SDL_WINDOWEVENT_SIZE_CHANGED:
      On_Real_Size(shown);
      break;
    case SDL_WINDOWEVENT_EXPOSED:
      Show_Pixels(shown.portable);
      InvalidateRect(shown.portable, nullptr, FALSE);
      break;
    case SDL_WINDOWEVENT_MINIMIZED:
    case SDL_WINDOWEVENT_RESTORED:
      Screen_Minimise(shown.portable, event == SDL_WINDOWEVENT_MINIMIZED);
      break;
    default:
      break;
  }
}

/** Keys that stand for a character have its code on both sides, letters that of the upper case here. */
static void On_Key(const ShownWindow& shown, const SDL_KeyboardEvent& event) {
  static constexpr struct {
    int32_t sdl;
    WPARAM portable;
  } arrows[] = {{SDLK_LEFT, VK_LEFT}, {SDLK_UP, VK_UP}, {SDLK_RIGHT, VK_RIGHT}, {SDLK_DOWN, VK_DOWN}};
  const int32_t key = event.keysym.sym;
  for (const auto& arrow : arrows) {
    if (arrow.sdl == key) PostMessageA(shown.portable, WM_KEYDOWN, arrow.portable, 0);
  }
  if (key > 0 && key < 128 && !event.repeat) PostMessageA(shown.portable, WM_KEYDOWN, static_cast<WPARAM>(std::toupper(key)), 0);
}

static void On_Button(const ShownWindow& shown, const SDL_MouseButtonEvent& event) {
  const bool down = event.type == SDL_MOUSEBUTTONDOWN, left = event.button == SDL_BUTTON_LEFT;
  if (!left && event.button != SDL_BUTTON_RIGHT) return;
  const UINT message = left ? (down ? WM_LBUTTONDOWN : WM_LBUTTONUP) : (down ? WM_RBUTTONDOWN : WM_RBUTTONUP);
  PostMessageA(shown.portable, message, 0, MAKELPARAM(event.x, event.y));
}

static void On_Event(const SDL_Event& event) {
  const bool ofButton = event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEBUTTONUP;
  if (event.type != SDL_WINDOWEVENT && event.type != SDL_KEYDOWN && !ofButton) return;
  // The window's number lies at the same place in all events that have one.
  const ShownWindow* const shown = Shown_By(event.window.windowID);
  if (!shown) return;
  // A copy: the window may be destroyed by what follows.
  const ShownWindow window = *shown;
  if (event.type == SDL_WINDOWEVENT) On_Window_Event(window, event.window.event);
  if (event.type == SDL_KEYDOWN) On_Key(window, event.key);
  if (ofButton) On_Button(window, event.button);
}

static void Pump_Events(uint32_t milliseconds) {
  SDL_Event event;
  const int wait = milliseconds > INT32_MAX ? -1 : static_cast<int>(milliseconds);
  for (int some = SDL_WaitEventTimeout(&event, wait); some; some = SDL_PollEvent(&event)) On_Event(event);
}

static void Wake() {
  SDL_Event event = {};
  event.type = SDL_USEREVENT;
  SDL_PushEvent(&event);
}

bool Sdl_Desktop_Start(int bits, std::string* error) {
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
  SDL_DisplayMode mode = {};
  if (SDL_Init(SDL_INIT_VIDEO) != 0 || SDL_GetDesktopDisplayMode(0, &mode) != 0) {
    *error = std::string("no desktop to show a window on: ") + SDL_GetError();
    SDL_Quit();
    return false;
  }
  ScreenSetup setup = Screen_Of_Depth(bits == 0 ? 32 : bits);
  screenBits = setup.bits;
  setup.width = mode.w;
  setup.height = mode.h;
  Screen_Set_Up(setup);
  Screen_Set_Desktop({Window_Created, Window_Changed, Show_Pixels, Window_Destroyed, Pump_Events, Wake});
  return true;
}

void Sdl_Desktop_Stop() {
  Screen_Set_Desktop({});
  Screen_Remove();
  SDL_Quit();
}
