/* Memory, mutexes, files, time and modules. All of it may be used from any thread. */
#pragma once

#include "platform/portable/system/types.h"

#include <mutex>

constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
constexpr DWORD HEAP_ZERO_MEMORY = 8;

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD FILE_SHARE_READ = 1;
constexpr DWORD FILE_SHARE_WRITE = 2;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1)))

struct SYSTEMTIME {
  WORD wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds;
};

struct SECURITY_ATTRIBUTES;
struct OVERLAPPED;

HANDLE GetProcessHeap();
/** Memory of `bytes` bytes, zeroed with HEAP_ZERO_MEMORY, or null. */
LPVOID HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes);
/** Frees memory of HeapAlloc; null is allowed. */
BOOL HeapFree(HANDLE heap, DWORD flags, LPVOID memory);

struct MEMORY_BASIC_INFORMATION {
  LPVOID AllocationBase;
};
/** For an address in code: AllocationBase is the handle of its module, which is always the one that this code lies in. Gives the
 * bytes stored, or 0 for another size. */
SIZE_T VirtualQuery(LPCVOID address, MEMORY_BASIC_INFORMATION* memory, SIZE_T bytes);

/** A recursive lock within the process. */
struct CRITICAL_SECTION {
  std::recursive_mutex mutex;
};
void InitializeCriticalSection(CRITICAL_SECTION* section);
void DeleteCriticalSection(CRITICAL_SECTION* section);
void EnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);

/** A recursive mutex, which the caller owns at once with initialOwner. Attributes and name are null. Null on failure. */
HANDLE CreateMutexA(SECURITY_ATTRIBUTES* attributes, BOOL initialOwner, LPCSTR name);
/** Locks a mutex: waits without limit with INFINITE, or with 0 only tries. WAIT_OBJECT_0, WAIT_TIMEOUT; WAIT_FAILED for null
 * and other times. */
DWORD WaitForSingleObject(HANDLE mutex, DWORD milliseconds);
/** Unlocks a mutex once. FALSE if the caller doesn't own it. */
BOOL ReleaseMutex(HANDLE mutex);
/** Destroys a mutex, also one that the caller owns, or closes a file. FALSE for null and INVALID_HANDLE_VALUE. */
BOOL CloseHandle(HANDLE handle);

/** Gives the value that was there before. */
LPVOID InterlockedExchangePointer(LPVOID volatile* target, LPVOID value);

DWORD GetCurrentThreadId();

/** Milliseconds of a clock that never goes back, wrapping at 32 bits. */
DWORD GetTickCount();
/** The local time of day. */
void GetLocalTime(SYSTEMTIME* time);
void Sleep(DWORD milliseconds);

/** Opens a file: to write with GENERIC_WRITE and CREATE_ALWAYS, to read with GENERIC_READ and OPEN_EXISTING. Sharing and
 * attributes are ignored. INVALID_HANDLE_VALUE on failure. */
HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* attributes, DWORD creation, DWORD flags,
                   HANDLE templateFile);
/** Writes all bytes, or gives FALSE; *written, which must not be null, is how many were written. */
BOOL WriteFile(HANDLE file, LPCVOID data, DWORD bytes, DWORD* written, OVERLAPPED* overlapped);
/** Reads up to `bytes` bytes; *got, which must not be null, is 0 at the end of the file. */
BOOL ReadFile(HANDLE file, LPVOID data, DWORD bytes, DWORD* got, OVERLAPPED* overlapped);

/** The modules are ddraw.dll and user32.dll, with the few functions that callers look up by name. The extension may be left out
 * and case does not matter. Null for any other. */
HMODULE LoadLibraryA(LPCSTR name);
HMODULE GetModuleHandleA(LPCSTR name);
BOOL FreeLibrary(HMODULE module);
FARPROC GetProcAddress(HMODULE module, LPCSTR name);

/** Text for a debugger. There is none here: the text is dropped. */
void OutputDebugStringA(LPCSTR text);
LPSTR lstrcpyA(LPSTR to, LPCSTR from);
