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

/** Fills the strip with black, the key colour, copies the bitmap to it, clipped to the strip, and deletes the bitmap. False, with
 *  the bitmap still the caller's, without a device context. */
bool Store_Bitmap(IDirectDrawSurface* surface, HBITMAP bitmap, const BitmapStrip& strip) {
  const int32_t top = Surface_Size(surface).cy - strip.fromBottom;
  const SIZE size = Bitmap_Size(bitmap);
  const int32_t width = std::min<int32_t>(strip.width, size.cx), height = std::min<int32_t>(strip.height, size.cy);
  {
    const BitmapDc source(bitmap);
    HDC dc = nullptr;
    if (!source.dc || FAILED(IDirectDrawSurface_GetDC(surface, &dc))) return false;
    const HGDIOBJ brushBefore = SelectObject(dc, GetStockObject(BLACK_BRUSH));
    Rectangle(dc, 0, top, strip.width, top + strip.height);
    SelectObject(dc, brushBefore);
    StretchBlt(dc, 0, top, width, height, source.dc, 0, 0, width, height, SRCCOPY);
    IDirectDrawSurface_ReleaseDC(surface, dc);
  }
  DeleteObject(bitmap);
  return true;
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
