/* A bitmap to copy from. */
#pragma once

#include "platform/win32.h"

/** A memory DC with a bitmap in it, for as long as it is in scope; dc is null when the system gives none. */
struct BitmapDc {
  HDC dc = CreateCompatibleDC(nullptr);
  HGDIOBJ before = nullptr;

  explicit BitmapDc(HBITMAP bitmap) {
    if (dc) before = SelectObject(dc, bitmap);
  }
  ~BitmapDc() {
    if (!dc) return;
    SelectObject(dc, before);
    DeleteDC(dc);
  }
  BitmapDc(const BitmapDc&) = delete;
  BitmapDc& operator=(const BitmapDc&) = delete;
};
