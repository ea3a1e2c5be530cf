#include "platform/portable/system/kernel.h"

#include "platform/portable/system/seam.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>
#include <thread>

namespace {

enum class HandleKind { Mutex, File };

/** What a HANDLE points to. */
struct KernelObject {
  HandleKind kind;
  std::recursive_mutex mutex;
  std::atomic<std::thread::id> owner;  ///< Of the mutex; no thread at all while it is free.
  int32_t depth = 0;                   ///< How often the owner has locked it; used by the owner alone.
  int descriptor = -1;                 ///< Of the file.
};

KernelObject* Find_Object(HANDLE handle, HandleKind kind) {
  if (!handle || handle == INVALID_HANDLE_VALUE) return nullptr;
  auto* object = static_cast<KernelObject*>(handle);
  return object->kind == kind ? object : nullptr;
}

KernelObject* Make_Object(HandleKind kind) {
  auto* object = new (std::nothrow) KernelObject{.kind = kind, .mutex = {}, .owner = {}};
  if (object) Object_Made();
  return object;
}

}  // namespace

HANDLE GetProcessHeap() {
  static char heap;
  return &heap;
}

LPVOID HeapAlloc(HANDLE, DWORD flags, SIZE_T bytes) {
  if (Step_Fails(RigStep::Memory)) return nullptr;
  const SIZE_T size = std::max<SIZE_T>(bytes, 1);
  void* memory = flags & HEAP_ZERO_MEMORY ? std::calloc(1, size) : std::malloc(size);
  if (memory) Object_Made();
  return memory;
}

BOOL HeapFree(HANDLE, DWORD, LPVOID memory) {
  if (memory) Object_Ended();
  std::free(memory);
  return TRUE;
}

void InitializeCriticalSection(CRITICAL_SECTION*) {}
void DeleteCriticalSection(CRITICAL_SECTION*) {}
void EnterCriticalSection(CRITICAL_SECTION* section) { section->mutex.lock(); }
void LeaveCriticalSection(CRITICAL_SECTION* section) { section->mutex.unlock(); }

HANDLE CreateMutexA(SECURITY_ATTRIBUTES*, BOOL initialOwner, LPCSTR) {
  if (Step_Fails(RigStep::CreateMutex)) return nullptr;
  KernelObject* object = Make_Object(HandleKind::Mutex);
  if (object && initialOwner) WaitForSingleObject(object, INFINITE);
  return object;  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the handle's owner closes it.
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  KernelObject* object = Find_Object(handle, HandleKind::Mutex);
  if (!object) return WAIT_FAILED;
  if (milliseconds == INFINITE) {
    object->mutex.lock();
  } else if (milliseconds != 0) {
    return WAIT_FAILED;
  } else if (!object->mutex.try_lock()) {
    return WAIT_TIMEOUT;
  }
  object->owner = std::this_thread::get_id();
  ++object->depth;
  return WAIT_OBJECT_0;
}

BOOL ReleaseMutex(HANDLE handle) {
  KernelObject* object = Find_Object(handle, HandleKind::Mutex);
  if (!object || object->owner.load() != std::this_thread::get_id()) return FALSE;
  if (--object->depth == 0) object->owner = std::thread::id();
  object->mutex.unlock();
  return TRUE;
}

BOOL CloseHandle(HANDLE handle) {
  if (!handle || handle == INVALID_HANDLE_VALUE) return FALSE;
  auto* object = static_cast<KernelObject*>(handle);
  if (object->kind == HandleKind::File) close(object->descriptor);
  // The owner may close a mutex that it has locked.
  while (object->owner.load() == std::this_thread::get_id()) ReleaseMutex(object);
  delete object;
  Object_Ended();
  return TRUE;
}

LPVOID InterlockedExchangePointer(LPVOID volatile* target, LPVOID value) {
  return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}

DWORD GetCurrentThreadId() { return static_cast<DWORD>(gettid()); }

DWORD GetTickCount() {
  DWORD tick = 0;
  if (Tick_Is_Set(&tick)) return tick;
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count() & 0xFFFFFFFF);
}

void GetLocalTime(SYSTEMTIME* time) {
  if (Local_Time_Is_Set(time)) return;
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  const auto word = [](long value) { return static_cast<WORD>(value); };
  *time = {word(local.tm_year + 1900), word(local.tm_mon + 1), word(local.tm_wday), word(local.tm_mday),
           word(local.tm_hour),        word(local.tm_min),     word(local.tm_sec),  word(now.tv_nsec / 1000000)};
}

void Sleep(DWORD milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD, SECURITY_ATTRIBUTES*, DWORD creation, DWORD, HANDLE) {
  int flags = O_CLOEXEC;
  if (access == GENERIC_WRITE && creation == CREATE_ALWAYS) {
    flags |= O_WRONLY | O_CREAT | O_TRUNC;
  } else if (access == GENERIC_READ && creation == OPEN_EXISTING) {
    flags |= O_RDONLY;
  } else {
    return INVALID_HANDLE_VALUE;
  }
  const int descriptor = path ? open(path, flags, 0666) : -1;
  if (descriptor < 0) return INVALID_HANDLE_VALUE;
  KernelObject* object = Make_Object(HandleKind::File);
  if (!object) {
    close(descriptor);
    return INVALID_HANDLE_VALUE;
  }
  object->descriptor = descriptor;
  return object;
}

BOOL WriteFile(HANDLE file, LPCVOID data, DWORD bytes, DWORD* written, OVERLAPPED*) {
  *written = 0;
  const KernelObject* object = Find_Object(file, HandleKind::File);
  if (!object || Step_Fails(RigStep::WriteFile)) return FALSE;
  const DWORD wanted = bytes > 0 && Step_Fails(RigStep::ShortWrite) ? bytes - 1 : bytes;
  while (*written < wanted) {
    const ssize_t count = write(object->descriptor, static_cast<const uint8_t*>(data) + *written, wanted - *written);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return FALSE;
    *written += static_cast<DWORD>(count);
  }
  return TRUE;
}

BOOL ReadFile(HANDLE file, LPVOID data, DWORD bytes, DWORD* got, OVERLAPPED*) {
  *got = 0;
  const KernelObject* object = Find_Object(file, HandleKind::File);
  if (!object) return FALSE;
  while (*got < bytes) {
    const ssize_t count = read(object->descriptor, static_cast<uint8_t*>(data) + *got, bytes - *got);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return FALSE;
    if (count == 0) break;
    *got += static_cast<DWORD>(count);
  }
  return TRUE;
}

void OutputDebugStringA(LPCSTR text) { Note_Debug_Output(text); }

LPSTR lstrcpyA(LPSTR to, LPCSTR from) { return static_cast<LPSTR>(std::memcpy(to, from, std::strlen(from) + 1)); }
