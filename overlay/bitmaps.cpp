/* The PTZ and the position bitmap (velarto.h). */
#include "decode/decoder.h"
#include "display/context.h"
#include "overlay/bitmap_dc.h"

#include "platform/win32.h"

#include <algorithm>

namespace {

/** A part of the off-screen surface kept for a bitmap. */
struct Strip {
  int32_t fromFoot;  ///< Rows of the surface from its foot up to the strip's first one.
  int32_t width, height;
};

SIZE Bitmap_Size(HBITMAP bitmap) {
  BITMAP size = {};
  GetObjectA(bitmap, sizeof size, &size);
  return {size.bmWidth, size.bmHeight};
}

/** Makes the strip black, which is the key colour, and copies the bitmap to it as far as both reach; then the bitmap is deleted.
 * False, with the bitmap still the caller's, when there is no device context. */
bool Store_Bitmap(IDirectDrawSurface* surface, HBITMAP bitmap, const Strip& strip) {
  const int32_t top = Surface_Size(surface).cy - strip.fromFoot;
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
  const Strip strip = {display->posHeight + PtzStripRows, display->posWidth, PtzStripRows};
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
