#include "plugin/recording.h"

#include "plugin/instances.h"

#include "platform/win32.h"

#include <cstdio>

namespace {

constexpr DWORD PathSize = 260;

/** The fields that all file dialogs share. */
OPENFILENAMEA recordFileDialog;

/** Holds the decoder's lock as long as it is in scope. */
struct Locked {
  HANDLE lock;
  explicit Locked(const JdecDecoder* decoder) : lock(decoder->lock) { WaitForSingleObject(lock, INFINITE); }
  ~Locked() { ReleaseMutex(lock); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
};

}  // namespace

void Record_Init_Dialog() {
  recordFileDialog = {};
  recordFileDialog.lStructSize = OPENFILENAME_SIZE_VERSION_400A;
  recordFileDialog.lpstrFilter = "VELARTO Video Stream File (*.vlr)\0";
  recordFileDialog.lpstrTitle = "Save Video Stream...";
  recordFileDialog.Flags = OFN_PATHMUSTEXIST | OFN_OVERWRITEPROMPT;
}

HANDLE Record_Ask_File(HWND window) {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  char path[PathSize];
  std::snprintf(path, sizeof path, "%d_%d_%d_%d_%d_%d_%d.vlr", now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
                now.wSecond, now.wMilliseconds);
  // A copy, since another window may open its dialog at the same time.
  OPENFILENAMEA dialog = recordFileDialog;
  dialog.hwndOwner = window;
  dialog.lpstrFile = path;
  dialog.nMaxFile = sizeof path;
  if (!GetOpenFileNameA(&dialog)) return INVALID_HANDLE_VALUE;
  const HANDLE file = CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) MessageBoxA(window, "Cannot Open File!", "ERROR", MB_OK);
  return file;
}

void Record_Start(HWND window, JdecDecoder* decoder) {
  if (!window || !decoder) return;
  Record_Stop(window, decoder);
  const JdecDecoder* const listed = Instance_Decoder(Find_Instance_By_Window(window));
  const HANDLE file = Record_Ask_File(window);
  if (file == INVALID_HANDLE_VALUE) return;
  // The dialog runs a message loop, in which the instance may have ended or another recording may have been started.
  if (Instance_Decoder(Find_Instance_By_Window(window)) != listed) {
    CloseHandle(file);
    return;
  }
  const Locked locked(decoder);
  if (decoder->recordFile) Record_Close(decoder);
  decoder->recordFile = file;
  decoder->recordState = RecordWaiting;
}

void Record_Stop(HWND window, JdecDecoder* decoder) {
  if (!window || !decoder) return;
  const Locked locked(decoder);
  if (decoder->recordFile) Record_Close(decoder);
  decoder->recordState = RecordOff;
}

void Record_Close(JdecDecoder* decoder) {
  const Locked locked(decoder);
  CloseHandle(decoder->recordFile);
  decoder->recordFile = nullptr;
  decoder->recordState = RecordOff;
}
