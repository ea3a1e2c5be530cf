#include "platform/portable/paint/gdi.h"
#include "platform/portable/paint/objects.h"
#include "platform/portable/system/kernel.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window.h"
#include "platform/portable/window/window_record.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace {

using Clock = std::chrono::steady_clock;
/** The number of the first message that is registered by name. */
constexpr UINT FirstRegistered = 0xC000;
/** The longest single wait of pumpEvents, in milliseconds. */
constexpr int64_t LongestPump = 60000;

std::mutex queueLock;
std::condition_variable queueChanged;
std::deque<MSG> queue;  ///< Posted messages; under queueLock, as the next one.
uint64_t postCount;
bool quitWanted;
int quitCode;

struct MessageFilter {
  HWND window;
  UINT first, last;
};

bool Passes(const MessageFilter& filter, HWND window, UINT message) {
  if (filter.window && filter.window != window) return false;
  return (filter.first == 0 && filter.last == 0) || (message >= filter.first && message <= filter.last);
}

MSG Make_Message(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return {window, message, wParam, lParam, GetTickCount(), {0, 0}};
}

/** Whether the message is for a window that has ended, or input for one that is disabled, by a dialog for instance. */
bool Is_Lost(const MSG& posted) {
  if (!posted.hwnd) return false;
  if (!Window_Find(posted.hwnd)) return true;
  const bool input = (posted.message >= WM_KEYDOWN && posted.message <= WM_CHAR) ||
                     (posted.message >= WM_LBUTTONDOWN && posted.message <= WM_RBUTTONUP);
  return input && !IsWindowEnabled(Window_Top(posted.hwnd));
}

bool Find_Posted(const MessageFilter& filter, bool take, MSG* message) {
  const std::lock_guard guard(queueLock);
  std::erase_if(queue, Is_Lost);
  const auto found =
      std::find_if(queue.begin(), queue.end(), [&](const MSG& posted) { return Passes(filter, posted.hwnd, posted.message); });
  if (found == queue.end()) return false;
  *message = *found;
  if (take) queue.erase(found);
  return true;
}

bool Find_Paint(const MessageFilter& filter, MSG* message) {
  for (HWND window : allWindows) {
    if (Rect_Is_Empty(window->invalid) || !Window_Shows(window) || !Passes(filter, window, WM_PAINT)) continue;
    *message = Make_Message(window, WM_PAINT, 0, 0);
    return true;
  }
  return false;
}

bool Find_Message(const MessageFilter& filter, bool take, MSG* message) {
  while (Find_Posted(filter, take, message))
    if (!take || !Hooks_Swallow(*message)) return true;
  if (quitWanted) {
    if (take) quitWanted = false;
    *message = Make_Message(nullptr, WM_QUIT, static_cast<WPARAM>(quitCode), 0);
    return true;
  }
  return Find_Paint(filter, message);
}

uint64_t Posts_So_Far() {
  const std::lock_guard guard(queueLock);
  return postCount;
}

/** Waits for a message that passes the filter, and removes it with `take`. False when the time is over. */
bool Wait_Message(const MessageFilter& filter, DWORD milliseconds, bool take, MSG* message) {
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
  const bool forever = milliseconds == INFINITE;
  for (bool pumped = Desktop_Pump(0);;) {
    const uint64_t posts = Posts_So_Far();
    if (Find_Message(filter, take, message)) return true;
    const int64_t left = forever ? LongestPump : std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0) return false;
    if (pumped) {
      pumped = Desktop_Pump(static_cast<uint32_t>(std::min(left, LongestPump)));
      continue;
    }
    std::unique_lock guard(queueLock);
    queueChanged.wait_for(guard, std::chrono::milliseconds(left), [&] { return postCount != posts; });
  }
}

/** The character of a key, or 0. */
WPARAM Key_Character(WPARAM key) {
  if (key >= 'A' && key <= 'Z') return key - 'A' + 'a';
  const bool plain = (key >= '0' && key <= '9') || key == VK_SPACE || key == VK_RETURN || key == VK_ESCAPE || key == VK_BACK;
  return plain ? key : 0;
}

bool Erase_Background(HWND window) {
  const auto color = reinterpret_cast<uintptr_t>(window->background);
  if (color == 0) return false;
  constexpr uintptr_t LastSystemColor = 31;
  const bool system = color <= LastSystemColor;
  if (!system && !window->background->draws) return true;
  const RECT client{0, 0, window->width, window->height};
  Fill_Pixels(Window_View(window), client, system ? 0xFFFFFF : Swap_Color(window->background->color));
  Desktop_Pixels_Changed(window);
  return true;
}

}  // namespace

void Messages_Forget(HWND window) {
  const std::lock_guard guard(queueLock);
  std::erase_if(queue, [=](const MSG& posted) { return posted.hwnd == window; });
}

void Messages_Clear() {
  const std::lock_guard guard(queueLock);
  queue.clear();
  quitWanted = false;
}

BOOL PeekMessageA(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
  Desktop_Pump(0);
  return Find_Message({window, first, last}, (remove & PM_REMOVE) != 0, message);
}

BOOL GetMessageA(MSG* message, HWND window, UINT first, UINT last) {
  Wait_Message({window, first, last}, INFINITE, true, message);
  return message->message != WM_QUIT;
}

DWORD MsgWaitForMultipleObjects(DWORD, const HANDLE*, BOOL, DWORD milliseconds, DWORD) {
  MSG message;
  return Wait_Message({nullptr, 0, 0}, milliseconds, false, &message) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

BOOL TranslateMessage(const MSG* message) {
  if (message->message != WM_KEYDOWN) return FALSE;
  const WPARAM character = Key_Character(message->wParam);
  if (character != 0) PostMessageA(message->hwnd, WM_CHAR, character, message->lParam);
  return TRUE;
}

LRESULT DispatchMessageA(const MSG* message) {
  return SendMessageA(message->hwnd, message->message, message->wParam, message->lParam);
}

UINT RegisterWindowMessageA(LPCSTR name) {
  static std::mutex lock;
  static std::vector<std::string> names;
  if (!name || !*name) return 0;
  const std::lock_guard guard(lock);
  const auto found = std::find(names.begin(), names.end(), name);
  const auto number = static_cast<UINT>(FirstRegistered + (found - names.begin()));
  if (found == names.end()) names.emplace_back(name);
  return number;
}

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (Step_Fails(RigStep::PostMessage)) return FALSE;
  const MSG posted = Make_Message(window, message, wParam, lParam);
  {
    const std::lock_guard guard(queueLock);
    queue.push_back(posted);
    ++postCount;
  }
  queueChanged.notify_all();
  Desktop_Wake();
  return TRUE;
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return Window_Find(window) ? window->proc(window, message, wParam, lParam) : 0;
}

LRESULT CallWindowProcA(WNDPROC proc, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return proc(window, message, wParam, lParam);
}

void PostQuitMessage(int exitCode) {
  quitCode = exitCode;
  quitWanted = true;
}

LRESULT DefWindowProcA(HWND window, UINT message, WPARAM, LPARAM) {
  if (!Window_Find(window)) return 0;
  switch (message) {
    case WM_CLOSE:
      DestroyWindow(window);
      return 0;
    case WM_PAINT: {
      PAINTSTRUCT paint;
      if (BeginPaint(window, &paint)) EndPaint(window, &paint);
      return 0;
    }
    case WM_ERASEBKGND:
      return Erase_Background(window);
    default:
      return 0;
  }
}
