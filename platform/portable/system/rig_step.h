/* Steps of the layer that tests can make fail. In the shipped layer these are names only. */
#pragma once

enum class RigStep {
  Memory,                ///< HeapAlloc gives null.
  LoadDirectDraw,        ///< LoadLibraryA of ddraw.dll.
  FindDirectDrawCreate,  ///< This and the next three: GetProcAddress of that function.
  FindEnumerate,
  FindEnumerateEx,
  FindMonitorFunction,  ///< GetMonitorInfoA.
  DirectDrawCreate,
  SetCooperativeLevel,
  CreatePrimary,
  DescribePrimary,  ///< GetSurfaceDesc of the primary surface.
  CreateClipper,
  ClipperSetWindow,
  SetClipper,
  CreateOffscreen,
  CreateOffscreenNull,  ///< Success, and a null pointer.
  CreatePalette,
  LoadBitmap,
  CreateCompatibleDC,
  RestorePrimary,
  RestoreOffscreen,
  LockOffscreen,
  LockWithoutPixels,  ///< The lock succeeds and gives a null lpSurface.
  SurfaceGetDC,
  BltOffscreen,  ///< Blt onto an off-screen surface.
  BltPrimary,    ///< Blt onto the primary surface.
  GetMonitorInfo,
  CreateMutex,
  WriteFile,
  ShortWrite,  ///< WriteFile succeeds and writes one byte less.
  CreateRegistryKey,
  SetRegistryValue,
  StretchBlt,
  PostMessage,
};
