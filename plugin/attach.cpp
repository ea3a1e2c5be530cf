#include "plugin/attach.h"

#include "plugin/recording.h"
#include "plugin/settings.h"
#include "resources/resources.h"

#include <initializer_list>

HINSTANCE moduleHandle = nullptr;
HBITMAP recordBitmap = nullptr, stopBitmap = nullptr, closeBitmap = nullptr;
int32_t mouseLButton = 0, mouseRButton = 0;
int32_t decoderSpeedSetting = DefaultDecoderSpeed;

static HHOOK keyboardHook = nullptr;

static HBITMAP Load_Face(uintptr_t id) { return LoadBitmapA(moduleHandle, MAKEINTRESOURCEA(id)); }

bool Library_Attach(HINSTANCE module) {
  InterlockedExchangePointer(reinterpret_cast<void* volatile*>(&moduleHandle), module);
  if (!module) return false;
  Record_Init_Dialog();
  Update_Internet_Settings();
  recordBitmap = Load_Face(RecordBitmapId);
  stopBitmap = Load_Face(StopBitmapId);
  closeBitmap = Load_Face(CloseBitmapId);
  const MakerSettings settings = Read_Maker_Settings();
  decoderSpeedSetting = settings.decoderSpeed;
  mouseLButton = settings.mouseLButton;
  mouseRButton = settings.mouseRButton;
  if (settings.rightButtonRead) keyboardHook = SetWindowsHookExA(WH_KEYBOARD, Keyboard_Hook_Proc, nullptr, GetCurrentThreadId());
  return true;
}

void Library_Detach() {
  const HINSTANCE module = moduleHandle;
  moduleHandle = nullptr;
  if (module) FreeLibrary(module);
  for (HBITMAP* const face : {&recordBitmap, &stopBitmap, &closeBitmap}) {
    if (*face) DeleteObject(*face);
    *face = nullptr;
  }
  if (keyboardHook) UnhookWindowsHookEx(keyboardHook);
  keyboardHook = nullptr;
}

LRESULT CALLBACK Keyboard_Hook_Proc(int code, WPARAM wParam, LPARAM lParam) {
  return CallNextHookEx(keyboardHook, code, wParam, lParam);
}
