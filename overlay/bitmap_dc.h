/* A device context to copy a bitmap from. */
#pragma once

#include "platform/win32.h"

/** A memory device context with a bitmap selected, as long as it is in scope. dc is null if the system gives none, before if the
 *  bitmap can't be selected. */
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
