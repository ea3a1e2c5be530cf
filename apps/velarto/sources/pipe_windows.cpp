#include "apps/velarto/sources/source.h"

#include <windows.h>

/** Milliseconds between two checks of an empty pipe. */
static constexpr DWORD PipeLook = 10;

static HANDLE Handle_Of(const Source& source) { return reinterpret_cast<HANDLE>(source.handle); }

bool Pipe_Open(const std::string& path, Source* source, std::string* error) {
  const HANDLE handle = path == "-" ? GetStdHandle(STD_INPUT_HANDLE)
                                    : CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                  OPEN_EXISTING, 0, nullptr);
  if (handle && handle != INVALID_HANDLE_VALUE) {
    source->handle = reinterpret_cast<intptr_t>(handle);
    return true;
  }
  *error = "can't open " + path + ": error " + std::to_string(GetLastError());
  return false;
}

int64_t Pipe_Read(Source* source, std::span<uint8_t> buffer, std::string* error) {
  const HANDLE handle = Handle_Of(*source);
  DWORD waiting = 0;
  // Only a pipe can be checked; anything else gives its bytes or its end without much delay.
  while (PeekNamedPipe(handle, nullptr, 0, nullptr, &waiting, nullptr) && waiting == 0) {
    if (source->stop->load()) return 0;
    Sleep(PipeLook);
  }
  DWORD count = 0;
  if (ReadFile(handle, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr)) return count;
  const DWORD code = GetLastError();
  if (code == ERROR_BROKEN_PIPE || code == ERROR_HANDLE_EOF) return 0;
  *error = "reading failed: error " + std::to_string(code);
  return -1;
}

void Pipe_Close(Source* source) {
  if (source->handle != -1 && Handle_Of(*source) != GetStdHandle(STD_INPUT_HANDLE)) CloseHandle(Handle_Of(*source));
  source->handle = -1;
}
