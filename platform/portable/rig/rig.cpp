#include "platform/portable/rig.h"

#include "platform/portable/paint/objects.h"
#include "platform/portable/paint/screen.h"
#include "platform/portable/system/registry_store.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window_record.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>

/* ---- Steps and objects ---------------------------------------------------------------------------------------------------- */

namespace {

constexpr size_t StepCount = static_cast<size_t>(RigStep::SetRegistryValue) + 1;

struct StepState {
  std::atomic<int32_t> calls{0};
  std::atomic<bool> armed{false};
  int32_t after = 0, times = 0;  ///< This and the next: under stepLock.
  HRESULT code = E_FAIL;
};
StepState steps[StepCount];
std::mutex stepLock;

std::atomic<int32_t> objectsAlive{0};

}  // namespace

void Rig_Fail(RigStep step, int32_t after, int32_t times, HRESULT code) {
  const std::lock_guard guard(stepLock);
  StepState& state = steps[static_cast<size_t>(step)];
  state.after = after;
  state.times = times;
  state.code = code;
  state.armed = times > 0;
}

void Rig_Fail_Nothing() {
  const std::lock_guard guard(stepLock);
  for (StepState& step : steps) step.armed = false;
}

int32_t Rig_Calls(RigStep step) { return steps[static_cast<size_t>(step)].calls; }

bool Step_Fails(RigStep step, HRESULT* code) {
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

void Object_Made() { objectsAlive.fetch_add(1, std::memory_order_relaxed); }
void Object_Ended() { objectsAlive.fetch_sub(1, std::memory_order_relaxed); }
int32_t Rig_Objects_Alive() { return objectsAlive; }

/* ---- Time ----------------------------------------------------------------------------------------------------------------- */

static constexpr int64_t RealTime = -1;
static std::atomic<int64_t> setTick{RealTime};
static SYSTEMTIME setTime;  ///< Year 0: none.

void Rig_Set_Tick(uint32_t tick) { setTick = tick; }
void Rig_Set_Local_Time(const SYSTEMTIME& time) { setTime = time; }

void Rig_Real_Time() {
  setTick = RealTime;
  setTime = {};
}

bool Tick_Is_Set(DWORD* tick) {
  const int64_t value = setTick.load(std::memory_order_relaxed);
  if (value == RealTime) return false;
  *tick = static_cast<DWORD>(value);
  return true;
}

bool Local_Time_Is_Set(SYSTEMTIME* time) {
  if (setTime.wYear == 0) return false;
  *time = setTime;
  return true;
}

/* ---- Texts ---------------------------------------------------------------------------------------------------------------- */

static constexpr size_t MostTexts = 1000;
static std::mutex textLock;
static std::vector<std::string> debugOutput, messages;

static void Add_Text(std::vector<std::string>& list, const std::string& text) {
  const std::lock_guard guard(textLock);
  if (list.size() < MostTexts) list.push_back(text);
}

static std::vector<std::string> Take_Texts(std::vector<std::string>& list) {
  const std::lock_guard guard(textLock);
  std::vector<std::string> taken;
  taken.swap(list);
  return taken;
}

void Note_Debug_Output(LPCSTR text) { Add_Text(debugOutput, text); }
void Note_Message(LPCSTR text, LPCSTR caption) { Add_Text(messages, std::string(caption) + "|" + text); }
std::vector<std::string> Rig_Take_Debug_Output() { return Take_Texts(debugOutput); }
std::vector<std::string> Rig_Take_Messages() { return Take_Texts(messages); }

/* ---- The screen ----------------------------------------------------------------------------------------------------------- */

void Note_Screen_Set_Up() {
  Rig_Fail_Nothing();
  for (StepState& step : steps) step.calls = 0;
  Rig_Take_Debug_Output();
  Rig_Take_Messages();
}

void Note_Screen_Removed() {
  Note_Screen_Set_Up();
  Rig_Real_Time();
}

void Rig_Lose_Surfaces() { ++screenState.losses; }

void Rig_Move_To_Monitor(HWND window, int32_t monitor) {
  if (!Window_Find(window)) return;
  const int32_t width = screenState.setup.width;
  Screen_Move(window, monitor * width + window->x % width, window->y);
}

/* ---- Pixels --------------------------------------------------------------------------------------------------------------- */

static const uint8_t* Tell_View(const PixelView& view, int32_t* width, int32_t* height, int32_t* pitch) {
  *width = view.width;
  *height = view.height;
  *pitch = static_cast<int32_t>(view.pitch);
  return view.pixels;
}

const uint8_t* Rig_Window_Pixels(HWND window, int32_t* width, int32_t* height, int32_t* pitch) {
  return Window_Find(window) ? Tell_View(Window_View(window), width, height, pitch) : nullptr;
}

uint32_t Rig_Window_Color(HWND window, int32_t x, int32_t y) {
  if (!Window_Find(window)) return 0xFFFFFFFF;
  const PixelView view = Window_View(window);
  const uint8_t* at = Pixel_At(view, x, y);
  return at ? Color_From_Pixel(view.format, Load_Pixel(at, view.format.bits)) : 0xFFFFFFFF;
}

const uint8_t* Rig_Surface_Pixels(IDirectDrawSurface* surface, int32_t* width, int32_t* height, int32_t* pitch) {
  return Tell_View(surface->view, width, height, pitch);
}

/** What each byte of the guards holds. Of a large surface many rows are never used: its guards stay zero, so that such rows take
 * no memory. */
static uint8_t Guard_Value(size_t bytes) {
  constexpr size_t LargeSurface = size_t{16} << 20;
  return bytes <= LargeSurface ? 0xA5 : 0;
}

void Fill_Guards(uint8_t* store, size_t bytes, size_t pitch, size_t used) {
  const uint8_t value = Guard_Value(bytes);
  if (value == 0) return;
  std::memset(store, value, GuardRows * pitch);
  std::memset(store + bytes - GuardRows * pitch, value, GuardRows * pitch);
  for (size_t row = GuardRows * pitch; row < bytes; row += pitch) std::memset(store + row + used, value, pitch - used);
}

bool Rig_Guards_Whole(const IDirectDrawSurface* surface) {
  const PixelView& view = surface->view;
  if (!surface->memory) return true;
  const size_t pitch = static_cast<size_t>(view.pitch), used = Pixel_Row_Bytes(view), outer = GuardRows * pitch;
  const uint8_t* const first = surface->memory + outer;
  const uint8_t* const last = first + pitch * static_cast<size_t>(view.height);
  const uint8_t value = Guard_Value(static_cast<size_t>(last - first) + 2 * outer);
  const auto whole = [value](const uint8_t* from, size_t bytes) {
    return std::all_of(from, from + bytes, [value](uint8_t byte) { return byte == value; });
  };
  for (const uint8_t* row = first; row < last; row += pitch)
    if (!whole(row + used, pitch - used)) return false;
  return whole(surface->memory, outer) && whole(last, outer);
}

/* ---- The registry --------------------------------------------------------------------------------------------------------- */

void Rig_Set_Registry(const std::string& key, const std::string& name, uint32_t type, const std::vector<uint8_t>& data) {
  Registry& registry = The_Registry();
  const std::lock_guard guard(registry.lock);
  registry.keys[Lower_Case(key)][Lower_Case(name)] = {type, data};
}

std::optional<std::vector<uint8_t>> Rig_Registry(const std::string& key, const std::string& name) {
  const std::lock_guard guard(The_Registry().lock);
  const RegistryValue* const value = Find_Value(Lower_Case(key), Lower_Case(name));
  if (!value) return std::nullopt;
  return value->data;
}

void Rig_Forget_Registry() {
  Registry& registry = The_Registry();
  const std::lock_guard guard(registry.lock);
  registry.keys.clear();
}

/* ---- Dialogs and tooltips ------------------------------------------------------------------------------------------------- */

HWND Rig_Dialog() {
  const auto newest = std::find_if(allWindows.rbegin(), allWindows.rend(), [](HWND window) { return window->dialog; });
  return newest == allWindows.rend() ? nullptr : *newest;
}

std::string Rig_Tooltip_Text(HWND window) { return Tooltip_Text(window); }
