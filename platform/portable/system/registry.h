/* The registry: a store in memory, empty when the process starts and gone when it ends. Any thread. Case doesn't matter in names
 * of keys and values. */
#pragma once

#include "platform/portable/system/types.h"

using LSTATUS = LONG;
using REGSAM = DWORD;

constexpr LSTATUS ERROR_SUCCESS = 0, ERROR_FILE_NOT_FOUND = 2, ERROR_ACCESS_DENIED = 5, ERROR_INVALID_HANDLE = 6,
                  ERROR_INVALID_PARAMETER = 87, ERROR_MORE_DATA = 234;
constexpr DWORD REG_NONE = 0, REG_SZ = 1, REG_BINARY = 3, REG_DWORD = 4;
constexpr REGSAM KEY_QUERY_VALUE = 1, KEY_SET_VALUE = 2, KEY_ALL_ACCESS = 0xF003F;
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000001)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000002)))

struct SECURITY_ATTRIBUTES;

/** Opens a key below one of the two roots; the caller closes it by RegCloseKey. ERROR_FILE_NOT_FOUND if there is none. */
LSTATUS RegOpenKeyExA(HKEY root, LPCSTR path, DWORD options, REGSAM access, HKEY* key);
/** The same, and creates the key if there is none. reserved, class and options are 0, attributes and disposition null. */
LSTATUS RegCreateKeyExA(HKEY root, LPCSTR path, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                        const SECURITY_ATTRIBUTES* attributes, HKEY* key, DWORD* disposition);
/** Reads a value. *size is the room in data before, and afterwards the value's bytes, also with ERROR_MORE_DATA, which leaves
 * data alone, and with null data; a missing value leaves *size alone. A text without its zero gets one if there is room, which
 * *size doesn't count. type may be null, size with data not. */
LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size);
/** Stores a value, whatever it was before. */
LSTATUS RegSetValueExA(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);
LSTATUS RegCloseKey(HKEY key);
