#include "platform/portable/screen.h"

#include "platform/portable/machine.h"
#include "platform/portable/system/kernel.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <mutex>

Machine machine;

namespace {

constexpr size_t StepCount = static_cast<size_t>(ScreenStep::SetRegistryValue) + 1;
constexpr size_t MostTexts = 1000;

struct StepState {
  std::atomic<int32_t> calls{0};
  std::atomic<bool> armed{false};
  int32_t after = 0, times = 0;  ///< This and the next: under stepLock.
  HRESULT code = E_FAIL;
};
StepState steps[StepCount];
std::mutex stepLock;

std::atomic<int32_t> objectsAlive{0};
ScreenDesktop desktop;

std::mutex textLock;
std::vector<std::string> debugOutput, messages;

void Add_Text(std::vector<std::string>& list, const std::string& text) {
  const std::lock_guard guard(textLock);
  if (list.size() < MostTexts) list.push_back(text);
}

std::vector<std::string> Take_Texts(std::vector<std::string>& list) {
  const std::lock_guard guard(textLock);
  std::vector<std::string> taken;
  taken.swap(list);
  return taken;
}

/** The system's twenty at both ends; between them three bits of red and green, two of blue. */
void Set_Start_Colors() {
  static constexpr uint32_t lower[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080,
                                       0x800080, 0x008080, 0xC0C0C0, 0xC0DCC0, 0xA6CAF0};
  static constexpr uint32_t upper[] = {0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000, 0x00FF00,
                                       0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};
  for (uint32_t i = 0; i < 256; ++i)
    machine.colors[i] = (i >> 5) * 255 / 7 << 16 | (i >> 2 & 7) * 255 / 7 << 8 | (i & 3) * 255 / 3;
  std::copy(std::begin(lower), std::end(lower), machine.colors);
  std::copy(std::begin(upper), std::end(upper), machine.colors + 246);
}

void Forget_All() {
  Screen_Fail_Nothing();
  for (StepState& step : steps) step.calls = 0;
  Screen_Take_Debug_Output();
  Screen_Take_Messages();
}

}  // namespace

ScreenSetup Screen_Of_Depth(int32_t bits) {
  ScreenSetup setup;
  setup.bits = bits == 15 ? 16 : bits;
  if (bits == 15) setup.redMask = 0x7C00, setup.greenMask = 0x3E0, setup.blueMask = 0x1F;
  if (bits == 16) setup.redMask = 0xF800, setup.greenMask = 0x7E0, setup.blueMask = 0x1F;
  return setup;
}

void Screen_Set_Up(const ScreenSetup& setup) {
  Forget_All();
  machine.on = true;
  machine.setup = setup;
  ++machine.losses;
  Set_Start_Colors();
  for (HWND window : allWindows) Window_Make_Pixels(window);
}

void Screen_Remove() {
  Forget_All();
  Messages_Clear();
  Screen_Real_Time();
  Screen_Set_File_Chooser(nullptr);
  machine.on = false;
  machine.setup = {};
  ++machine.losses;
  for (HWND window : allWindows) Window_Make_Pixels(window);
}

ColorFormat Screen_Format() {
  const ScreenSetup& setup = machine.setup;
  const bool known = setup.bits == 8 || setup.bits == 16 || setup.bits == 24 || setup.bits == 32;
  return {machine.on && known ? setup.bits : 0, setup.redMask, setup.greenMask, setup.blueMask, machine.colors};
}

void Screen_Fail(ScreenStep step, int32_t after, int32_t times, HRESULT code) {
  const std::lock_guard guard(stepLock);
  StepState& state = steps[static_cast<size_t>(step)];
  state.after = after;
  state.times = times;
  state.code = code;
  state.armed = times > 0;
}

void Screen_Fail_Nothing() {
  const std::lock_guard guard(stepLock);
  for (StepState& step : steps) step.armed = false;
}

int32_t Screen_Calls(ScreenStep step) { return steps[static_cast<size_t>(step)].calls; }

bool Step_Fails(ScreenStep step, HRESULT* code) {
  StepState& state = steps[static_cast<size_t>(step)];
  state.calls.fetch_add(1, std::memory_order_relaxed);
  if (!state.armed.load(std::memory_order_relaxed)) return false;
  const std::lock_guard guard(stepLock);
  if (!state.armed) return false;
  if (state.after > 0) {
    --state.after;
    return false;
  }
  if (state.times != INT32_MAX && --state.times == 0) state.armed = false;
  if (code) *code = state.code;
  return true;
}

void Screen_Lose_Surfaces() { ++machine.losses; }

void Object_Made() { objectsAlive.fetch_add(1, std::memory_order_relaxed); }
void Object_Ended() { objectsAlive.fetch_sub(1, std::memory_order_relaxed); }
int32_t Screen_Objects_Alive() { return objectsAlive; }

void Add_Debug_Output(const char* text) { Add_Text(debugOutput, text); }
void Add_Message(const std::string& message) { Add_Text(messages, message); }
std::vector<std::string> Screen_Take_Debug_Output() { return Take_Texts(debugOutput); }
std::vector<std::string> Screen_Take_Messages() { return Take_Texts(messages); }

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

void Screen_Minimise(HWND window, bool minimised) {
  if (!Window_Find(window) || window->minimised == minimised) return;
  Window_Set_Minimised(window, minimised);
  PostMessageA(window, WM_SIZE, minimised ? SIZE_MINIMIZED : SIZE_RESTORED, Window_Size_Param(window));
}

void Screen_Disable(HWND window, bool disabled) { EnableWindow(window, !disabled); }

void Screen_Move_To_Monitor(HWND window, int32_t monitor) {
  if (!Window_Find(window)) return;
  window->x = Monitor_Area(monitor).left + window->x % machine.setup.width;
  Desktop_Window_Changed(window);
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

const uint8_t* Screen_Window_Pixels(HWND window, int32_t* width, int32_t* height, int32_t* pitch) {
  if (!Window_Find(window)) return nullptr;
  const PixelView view = Window_View(window);
  *width = view.width;
  *height = view.height;
  *pitch = static_cast<int32_t>(view.pitch);
  return view.pixels;
}

uint32_t Screen_Window_Color(HWND window, int32_t x, int32_t y) {
  if (!Window_Find(window)) return 0xFFFFFFFF;
  const PixelView view = Window_View(window);
  const uint8_t* at = Pixel_At(view, x, y);
  return at ? Color_From_Pixel(view.format, Load_Pixel(at, view.format.bits)) : 0xFFFFFFFF;
}

void Screen_Copy_Colors(HWND window, const RECT& part, uint32_t* to, ptrdiff_t pitch) {
  if (!Window_Find(window)) return;
  const RECT place = {0, 0, part.right - part.left, part.bottom - part.top};
  const PixelView target = {reinterpret_cast<uint8_t*>(to), place.right, place.bottom, pitch, {32, 0, 0, 0, nullptr}};
  Copy_Pixels({target, place, Window_View(window), part, false});
}

const uint8_t* Screen_Surface_Pixels(IDirectDrawSurface* surface, int32_t* width, int32_t* height, int32_t* pitch) {
  *width = surface->view.width;
  *height = surface->view.height;
  *pitch = static_cast<int32_t>(surface->view.pitch);
  return surface->view.pixels;
}
