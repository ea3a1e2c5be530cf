/* The PTZ and the position bitmap (velarto.h). */
#include "decode/decoder.h"
#include "display/context.h"
#include "overlay/bitmap_dc.h"

#include "platform/win32.h"

#include <algorithm>

namespace {

/** The rows of the off-screen surface that hold a bitmap. */
struct BitmapStrip {
  int32_t fromBottom;  ///< Rows from the strip's first one to the surface's bottom.
  int32_t width, height;
};

SIZE Bitmap_Size(HBITMAP bitmap) {
  BITMAP size = {};
  GetObjectA(bitmap, sizeof size, &size);
  return {size.bmWidth, size.bmHeight};
}

/** Fills the strip with black, the key colour, and copies the bitmap to it, clipped to the strip. False if a step fails. */
bool Copy_To_Strip(IDirectDrawSurface* surface, HBITMAP bitmap, const BitmapStrip& strip) {
  const SIZE size = Bitmap_Size(bitmap), surfaceSize = Surface_Size(surface);
  const int32_t top = surfaceSize.cy - strip.fromBottom;
  const int32_t width = std::min<int32_t>(strip.width, size.cx), height = std::min<int32_t>(strip.height, size.cy);
  const BitmapDc source(bitmap);
  HDC dc = nullptr;
  if (width <= 0 || height <= 0 || surfaceSize.cy == 0 || !source.before) return false;
  if (FAILED(IDirectDrawSurface_GetDC(surface, &dc))) return false;
  const HGDIOBJ brushBefore = SelectObject(dc, GetStockObject(BLACK_BRUSH));
  const bool copied = Rectangle(dc, 0, top, strip.width, top + strip.height) &&
                      StretchBlt(dc, 0, top, width, height, source.dc, 0, 0, width, height, SRCCOPY);
  SelectObject(dc, brushBefore);
  return SUCCEEDED(IDirectDrawSurface_ReleaseDC(surface, dc)) && copied;
}

/** Copies the bitmap to the strip and deletes it. False, with the bitmap still the caller's, if it can't be copied. */
bool Store_Bitmap(IDirectDrawSurface* surface, HBITMAP bitmap, const BitmapStrip& strip) {
  return Copy_To_Strip(surface, bitmap, strip) && DeleteObject(bitmap);
}

}  // namespace

void VELARTO_CDECL JDEC_set_ptz_bmp(JdecDecoder* decoder, VelartoBitmap bitmap) {
  if (!decoder || !decoder->display) return;
  JdecDisplay* const display = decoder->display;
  display->ptzEnabled = 0;
  if (!bitmap || !display->offscreenSurface) return;
  const SIZE size = Bitmap_Size(bitmap);
  display->ptzWidth = std::min<int32_t>(size.cx, display->posWidth);
  display->ptzHeight = std::min<int32_t>(size.cy, PtzStripRows);
  const BitmapStrip strip = {display->posHeight + PtzStripRows, display->posWidth, PtzStripRows};
  display->ptzEnabled = Store_Bitmap(display->offscreenSurface, bitmap, strip);
}

int32_t VELARTO_CDECL JDEC_set_pos_bmp(JdecDecoder* decoder, VelartoBitmap bitmap) {
  if (!decoder || !decoder->display) return 0;
  JdecDisplay* const display = decoder->display;
  display->posEnabled = 0;
  if (!bitmap || !display->offscreenSurface) return 0;
  display->posEnabled =
      Store_Bitmap(display->offscreenSurface, bitmap, {display->posHeight, display->posWidth, display->posHeight});
  return display->posEnabled;
}
