#include "platform/sdl/sdl_desktop.h"

#include "platform/sdl/file_question.h"
#include "platform/sdl/late_wakes.h"
#include "platform/sdl/pointer.h"
#include "platform/sdl/shown_windows.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

/* ---- Events --------------------------------------------------------------------------------------------------------------- */

static void On_Window_Event(const ShownWindow& shown, uint8_t event) {
  switch (event) {
    case SDL_WINDOWEVENT_CLOSE:
      if (IsWindowEnabled(shown.portable)) PostMessageA(shown.portable, WM_CLOSE, 0, 0);
      break;
    case SDL_WINDOWEVENT_MOVED:
      Follow_Place(shown);
      break;
    case SDL_WINDOWEVENT_SIZE_CHANGED:
      Follow_Size(shown);
      break;
    case SDL_WINDOWEVENT_EXPOSED:
      Mark_Changed(shown);  // The portable window still has its pixels: no WM_PAINT.
      break;
    case SDL_WINDOWEVENT_MINIMIZED:
    case SDL_WINDOWEVENT_RESTORED:
      Screen_Minimise(shown.portable, event == SDL_WINDOWEVENT_MINIMIZED);
      break;
    case SDL_WINDOWEVENT_LEAVE:
      Pointer_Ignored();
      break;
    default:
      break;
  }
}

/** SDL and Windows use a character's code for its key; Windows that of the upper case for letters. */
static void On_Key(const ShownWindow& shown, const SDL_KeyboardEvent& event) {
  static constexpr struct {
    int32_t sdl;
    WPARAM portable;
  } arrows[] = {{SDLK_LEFT, VK_LEFT}, {SDLK_UP, VK_UP}, {SDLK_RIGHT, VK_RIGHT}, {SDLK_DOWN, VK_DOWN}};
  Pointer_Ignored();
  const int32_t key = event.keysym.sym;
  const HWND window = Active_Window(shown.portable);
  for (const auto& arrow : arrows) {
    if (arrow.sdl == key) PostMessageA(window, WM_KEYDOWN, arrow.portable, 0);
  }
  if (key > 0 && key < 128 && !event.repeat) PostMessageA(window, WM_KEYDOWN, static_cast<WPARAM>(std::toupper(key)), 0);
}

static void On_Event(const SDL_Event& event) {
  const bool ofButton = event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEBUTTONUP;
  const bool ofMotion = event.type == SDL_MOUSEMOTION;
  if (event.type != SDL_WINDOWEVENT && event.type != SDL_KEYDOWN && !ofButton && !ofMotion) return;
  // The window's number is at the same offset in all these events.
  const ShownWindow* const shown = Shown_By(event.window.windowID);
  if (!shown) return;
  // A copy: the window may be destroyed by what follows.
  const ShownWindow window = *shown;
  if (event.type == SDL_WINDOWEVENT) On_Window_Event(window, event.window.event);
  if (event.type == SDL_KEYDOWN) On_Key(window, event.key);
  if (ofButton) Pointer_Button(window, event.button);
  if (ofMotion) Pointer_Moved(window, event.motion);
}

static void Pump_Events(uint32_t milliseconds) {
  Show_Changes();
  SDL_Event event;
  const uint32_t longest = std::min(milliseconds, Pointer_Rests());
  const int wait = longest > INT32_MAX ? -1 : static_cast<int>(longest);
  for (int some = SDL_WaitEventTimeout(&event, wait); some; some = SDL_PollEvent(&event)) On_Event(event);
}

static void Wake() {
  SDL_Event event = {};
  event.type = SDL_USEREVENT;
  SDL_PushEvent(&event);
}

/* ---- Messages ------------------------------------------------------------------------------------------------------------- */

static void Show_Message(HWND owner, const char* text, const char* caption, UINT type) {
  Show_Changes();
  const ShownWindow* const shown = Shown_As(Top_Of(owner));
  const uint32_t kind = (type & MB_ICONERROR) ? SDL_MESSAGEBOX_ERROR : SDL_MESSAGEBOX_INFORMATION;
  if (SDL_ShowSimpleMessageBox(kind, caption, text, shown ? shown->real : nullptr) != 0) {
    std::fprintf(stderr, "velarto: %s: %s\n", caption, text);
  }
  // Input for other windows, which were disabled, is dropped.
  SDL_PumpEvents();
  SDL_FlushEvents(SDL_KEYDOWN, SDL_MOUSEWHEEL);
}

/* ---- Start and end -------------------------------------------------------------------------------------------------------- */

bool Sdl_Desktop_Start(int bits, std::string* error) {
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
  SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
  // Windows are plain copies: with graphics hardware they take longer, and more threads and memory.
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  SDL_DisplayMode mode = {};
  if (SDL_Init(SDL_INIT_VIDEO) != 0 || SDL_GetDesktopDisplayMode(0, &mode) != 0) {
    *error = std::string("no desktop to show a window on: ") + SDL_GetError();
    SDL_Quit();
    return false;
  }
  Late_Wakes_Forgive();
  ScreenSetup setup = Screen_Of_Depth(bits == 0 ? 32 : bits);
  setup.width = mode.w;
  setup.height = mode.h;
  Screen_Set_Up(setup);
  ScreenDesktop desktop = {};
  Windows_Hook_In(&desktop);
  desktop.pumpEvents = Pump_Events;
  desktop.wake = Wake;
  desktop.cursorChanged = Pointer_Show_Cursor;
  desktop.showMessage = Show_Message;
  Screen_Set_Desktop(desktop);
  Screen_Set_File_Chooser(Ask_For_File);
  return true;
}

void Sdl_Desktop_Stop() {
  Screen_Set_Desktop({});
  Screen_Remove();
  Pointer_Stop();
  Late_Wakes_Forget();
  SDL_Quit();
}
