/* Keyboard hooks. */
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window.h"
#include "platform/portable/window/window_record.h"

#include <algorithm>
#include <new>

struct HHOOK__ {
  HOOKPROC procedure;
};

static std::vector<HHOOK> hooks;  ///< Oldest first.

static std::vector<HHOOK>::iterator Place_Of(HHOOK hook) { return std::find(hooks.begin(), hooks.end(), hook); }

HHOOK SetWindowsHookExA(int type, HOOKPROC procedure, HINSTANCE, DWORD) {
  if (type != WH_KEYBOARD || !procedure) return nullptr;
  HHOOK hook = new (std::nothrow) HHOOK__{procedure};
  if (!hook) return nullptr;
  Object_Made();
  hooks.push_back(hook);
  return hook;
}

BOOL UnhookWindowsHookEx(HHOOK hook) {
  const auto place = Place_Of(hook);
  if (place == hooks.end()) return FALSE;
  hooks.erase(place);
  delete hook;
  Object_Ended();
  return TRUE;
}

LRESULT CallNextHookEx(HHOOK hook, int code, WPARAM wParam, LPARAM lParam) {
  const auto place = Place_Of(hook);
  if (place == hooks.end() || place == hooks.begin()) return 0;
  return (*(place - 1))->procedure(code, wParam, lParam);
}

bool Hooks_Swallow(const MSG& message) {
  if (hooks.empty() || (message.message != WM_KEYDOWN && message.message != WM_KEYUP)) return false;
  return hooks.back()->procedure(HC_ACTION, message.wParam, message.lParam) != 0;
}
