/* Types by their Windows names, with the same sizes and meaning. Handles of windows, device contexts and so on point to different
 * incomplete records, so that the compiler tells them apart. */
#pragma once

#include <cstddef>
#include <cstdint>

#define WINAPI
#define CALLBACK
#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

using BOOL = int;
using INT = int32_t;
using BYTE = uint8_t;
using CHAR = char;
using WORD = uint16_t;
using ATOM = uint16_t;
using UINT = uint32_t;
using LONG = int32_t;
using ULONG = uint32_t;
using DWORD = uint32_t;
using HRESULT = int32_t;
using COLORREF = uint32_t;  ///< 0x00BBGGRR.
using SIZE_T = size_t;
using INT_PTR = intptr_t;
using UINT_PTR = uintptr_t;
using LONG_PTR = intptr_t;
using ULONG_PTR = uintptr_t;
using DWORD_PTR = uintptr_t;
using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;
using LPVOID = void*;
using LPCVOID = const void*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPBYTE = uint8_t*;
using LPDWORD = uint32_t*;
using HANDLE = void*;
using HGDIOBJ = void*;
using HWND = struct HWND__*;
using HDC = struct HDC__*;
using HFONT = struct HFONT__*;
using HPEN = struct HPEN__*;
using HBRUSH = struct HBRUSH__*;
using HPALETTE = struct HPALETTE__*;
using HRGN = struct HRGN__*;
using HBITMAP = struct HBITMAP__*;
using HMONITOR = struct HMONITOR__*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HMENU = struct HMENU__*;
using HICON = struct HICON__*;
using HCURSOR = HICON;
using HRGN = struct HRGN__*;
using HHOOK = struct HHOOK__*;
using HKEY = struct HKEY__*;
using FARPROC = INT_PTR (*)();

struct POINT {
  LONG x, y;
};

struct SIZE {
  LONG cx, cy;
};

struct RECT {
  LONG left, top, right, bottom;  ///< right and bottom are the first column and row outside.
};
using LPRECT = RECT*;
using LPCRECT = const RECT*;
using LPPOINT = POINT*;

struct GUID {
  uint32_t Data1;
  uint16_t Data2, Data3;
  uint8_t Data4[8];
};

constexpr HRESULT Result_Code(uint32_t bits) { return static_cast<HRESULT>(bits); }
constexpr HRESULT S_OK = 0;
constexpr HRESULT E_FAIL = Result_Code(0x80004005);
constexpr HRESULT E_NOTIMPL = Result_Code(0x80004001);
constexpr HRESULT E_INVALIDARG = Result_Code(0x80070057);
constexpr HRESULT E_OUTOFMEMORY = Result_Code(0x8007000E);
constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

constexpr WORD LOWORD(uintptr_t value) { return static_cast<WORD>(value & 0xFFFF); }
constexpr WORD HIWORD(uintptr_t value) { return static_cast<WORD>(value >> 16 & 0xFFFF); }
constexpr LONG MAKELONG(uintptr_t low, uintptr_t high) {
  return static_cast<LONG>(static_cast<uint32_t>(low & 0xFFFF) | static_cast<uint32_t>(high & 0xFFFF) << 16);
}
constexpr WPARAM MAKEWPARAM(uintptr_t low, uintptr_t high) { return static_cast<uint32_t>(MAKELONG(low, high)); }
constexpr LPARAM MAKELPARAM(uintptr_t low, uintptr_t high) { return static_cast<LPARAM>(MAKELONG(low, high)); }
