#include "platform/portable/desktop.h"

#include "platform/portable/paint/screen.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window_record.h"

/* ---- The screen ----------------------------------------------------------------------------------------------------------- */

void Screen_Set_Up(const ScreenSetup& setup) {
  Note_Screen_Set_Up();
  screenState.on = true;
  screenState.setup = setup;
  ++screenState.losses;
  Set_Start_Colors();
  for (HWND window : allWindows) Window_Make_Pixels(window);
}

void Screen_Remove() {
  Note_Screen_Removed();
  Messages_Clear();
  Screen_Set_File_Chooser(nullptr);
  screenState.on = false;
  screenState.setup = {};
  ++screenState.losses;
  for (HWND window : allWindows) Window_Make_Pixels(window);
}

/* ---- The desktop's own part ----------------------------------------------------------------------------------------------- */

static ScreenDesktop desktop;

void Screen_Set_Desktop(const ScreenDesktop& given) { desktop = given; }

void Desktop_Window_Created(HWND window) {
  if (desktop.windowCreated) desktop.windowCreated(window);
}

void Desktop_Window_Changed(HWND window) {
  if (desktop.windowChanged) desktop.windowChanged(window);
}

void Desktop_Pixels_Changed(HWND window) {
  if (desktop.pixelsChanged) desktop.pixelsChanged(window);
}

void Desktop_Window_Destroyed(HWND window) {
  if (desktop.windowDestroyed) desktop.windowDestroyed(window);
}

bool Desktop_Pump(uint32_t milliseconds) {
  if (!desktop.pumpEvents) return false;
  desktop.pumpEvents(milliseconds);
  return true;
}

void Desktop_Wake() {
  if (desktop.wake) desktop.wake();
}

void Desktop_Cursor_Changed() {
  if (desktop.cursorChanged) desktop.cursorChanged();
}

bool Desktop_Show_Message(HWND owner, const char* text, const char* caption, UINT type) {
  if (!desktop.showMessage) return false;
  desktop.showMessage(owner, text, caption, type);
  return true;
}

/* ---- What the user does to a window --------------------------------------------------------------------------------------- */

void Screen_Minimise(HWND window, bool minimised) {
  if (!Window_Find(window) || window->minimised == minimised) return;
  Window_Set_Minimised(window, minimised);
  PostMessageA(window, WM_SIZE, minimised ? SIZE_MINIMIZED : SIZE_RESTORED, Window_Size_Param(window));
}

void Screen_Move(HWND window, int32_t x, int32_t y) {
  if (!Window_Find(window)) return;
  window->x = x;
  window->y = y;
}

void Screen_Resize_Client(HWND window, int32_t width, int32_t height) {
  if (!Window_Find(window)) return;
  Window_Resize(window, width, height);
  PostMessageA(window, WM_SIZE, SIZE_RESTORED, Window_Size_Param(window));
}

/* ---- What is seen --------------------------------------------------------------------------------------------------------- */

static void Add_Parts(HWND window, const RECT& place, const RECT& limit, std::vector<ScreenPart>* parts) {
  const RECT seen = Rect_Common(place, limit);
  if (window->ending || Rect_Is_Empty(seen) || !Window_Shows(window)) return;
  parts->push_back({window, place, seen});
  for (HWND child : allWindows) {
    if (child->parent != window) continue;
    const LONG left = place.left + child->x, top = place.top + child->y;
    Add_Parts(child, {left, top, left + child->width, top + child->height}, seen, parts);
  }
}

std::vector<ScreenPart> Screen_Parts(HWND top) {
  std::vector<ScreenPart> parts;
  if (!Window_Find(top)) return parts;
  const RECT client = {0, 0, top->width, top->height};
  Add_Parts(top, client, client, &parts);
  return parts;
}

void Screen_Copy_Colors(HWND window, const RECT& part, uint32_t* to, ptrdiff_t pitch) {
  if (!Window_Find(window)) return;
  const RECT place = {0, 0, part.right - part.left, part.bottom - part.top};
  const PixelView target = {reinterpret_cast<uint8_t*>(to), place.right, place.bottom, pitch, {32, 0, 0, 0, nullptr}};
  Copy_Pixels({target, place, Window_View(window), part, false});
}
