#include "display/present.h"

#include "display/monitors.h"
#include "display/present_gdi.h"
#include "display/statistics.h"
#include "overlay/color_key.h"
#include "overlay/motion_search.h"

#include "platform/win32.h"

#include <algorithm>
#include <cstring>

namespace {

/** Client width and picture height below which nothing is drawn. */
constexpr int32_t LeastShown = 32;
/** Rows between the PTZ bitmap and the picture's bottom. */
constexpr LONG PtzMargin = 20;
/** Most restores in one frame. A surface that is lost again each time must not block the caller. */
constexpr int32_t MostRestores = 16;

/** One axis of a copy at 1:1. */
struct Span {
  LONG from, to, length;
};

/** Clips a copy so that it reads from sourceStart up to sourceEnd and writes from 0 up to targetEnd. */
void Cut_Span(Span& span, LONG sourceStart, LONG sourceEnd, LONG targetEnd) {
  const LONG before = std::max({LONG{0}, sourceStart - span.from, -span.to});
  span.from += before;
  span.to += before;
  span.length = std::min({span.length - before, sourceEnd - span.from, targetEnd - span.to});
}

/** Copies pixels that are not black from the rows below the picture to the picture's rows, clipped to both. Gives the code of the
 *  copy; DD_OK if nothing is left to copy. */
HRESULT Blt_Overlay(IDirectDrawSurface* surface, Span columns, Span rows, int32_t pictureHeight) {
  const SIZE size = Surface_Size(surface);
  Cut_Span(columns, 0, size.cx, size.cx);
  Cut_Span(rows, pictureHeight, size.cy, std::min<LONG>(pictureHeight, size.cy));
  if (columns.length <= 0 || rows.length <= 0) return DD_OK;
  RECT source = {columns.from, rows.from, columns.from + columns.length, rows.from + rows.length};
  RECT target = {columns.to, rows.to, columns.to + columns.length, rows.to + rows.length};
  return IDirectDrawSurface_Blt(surface, &target, surface, &source, DDBLT_KEYSRC, nullptr);
}

/** Copies the motion-area layer over the frame. False drops the frame. */
bool Show_Motion_Layer(JdecDisplay* display, int32_t width, int32_t height) {
  for (int32_t restores = 0; restores <= MostRestores;) {
    const LONG rows = Surface_Layout(width, height).layerRows;
    const HRESULT result = Blt_Overlay(display->offscreenSurface, {0, 0, width}, {height, 0, rows}, height);
    if (SUCCEEDED(result)) return true;
    if (result == DDERR_WASSTILLDRAWING) continue;
    if (result != DDERR_SURFACELOST || Display_Restore(display) == 0) return false;
    ++restores;
  }
  return false;
}

void Show_Ptz_Bitmap(JdecDisplay* display, int32_t width, int32_t height) {
  IDirectDrawSurface* surface = display->offscreenSurface;
  const LONG strip = Surface_Size(surface).cy - display->posHeight - PtzStripRows;
  Set_Color_Key(surface, RGB(0, 0, 0), display->keyRow);
  Blt_Overlay(surface, {0, width - display->ptzWidth, display->ptzWidth},
              {strip, height - display->ptzHeight - PtzMargin, display->ptzHeight}, height);
}

void Show_Position_Bitmap(JdecDisplay* display, int32_t width, int32_t height) {
  IDirectDrawSurface* surface = display->offscreenSurface;
  const LONG strip = Surface_Size(surface).cy - display->posHeight;
  Set_Color_Key(surface, RGB(0, 0, 0), display->keyRow);
  Blt_Overlay(surface, {0, 0, width}, {strip, height - display->posHeight, display->posHeight}, height);
}

/** Copies the first of the overlays that is on, and only that one, over the frame. False drops the frame. */
bool Show_Overlay(JdecDisplay* display, int32_t width, int32_t height, int32_t mdMode) {
  if (mdMode != 0) return Show_Motion_Layer(display, width, height);
  if (display->ptzEnabled != 0) {
    Show_Ptz_Bitmap(display, width, height);
  } else if (display->posEnabled != 0) {
    Show_Position_Bitmap(display, width, height);
  }
  return true;
}

LONG Scale(LONG length, LONG part, LONG whole) { return static_cast<LONG>(int64_t{length} * part / whole); }

/** Stretches the picture over the whole client area. If the picture has more rows than the surface, the rows that are there are
 *  stretched over their share of it. True if the window shows the frame. */
bool Blt_To_Window(JdecDisplay* display, const PicturePart& part) {
  const SIZE size = Surface_Size(display->offscreenSurface);
  const LONG width = std::min<LONG>(part.width, size.cx - part.x);
  const LONG height = std::min<LONG>(part.height, size.cy - part.y);
  if (width <= 0 || height <= 0) return false;
  RECT source = {part.x, part.y, part.x + width, part.y + height};

  RECT client = {};
  POINT origin = {};
  GetClientRect(display->window, &client);
  ClientToScreen(display->window, &origin);
  RECT target = {origin.x, origin.y, origin.x + Scale(client.right - client.left, width, part.width),
                 origin.y + Scale(client.bottom - client.top, height, part.height)};

  HRESULT result;
  do {
    result = IDirectDrawSurface_Blt(display->primarySurface, &target, display->offscreenSurface, &source, 0, nullptr);
  } while (result == DDERR_WASSTILLDRAWING);
  if (result == DDERR_SURFACELOST) Display_Restore(display);
  return SUCCEEDED(result);
}

/** The lock is not held while the callback runs: it may register another one. */
void Call_Draw_Callback(JdecDisplay* display) {
  WaitForSingleObject(display->lock, INFINITE);
  const DrawCallback callback = display->drawCallback;
  const uintptr_t user = display->drawCallbackUser;
  ReleaseMutex(display->lock);
  if (callback) callback(display->window, user);
}

void Draw_Statistics(JdecDisplay* display) {
  if (display->showStatistics == 0) return;
  Display_Draw_Fps_Text(display);
  Display_Draw_Bitrate_Text(display);
}

void Present_DirectDraw(JdecDisplay* display, const JdecRaster* raster, const PicturePart& part, int32_t mdMode) {
  // If the frame can't be copied, the previous one is shown again.
  Display_Copy_Raster(display->offscreenSurface, raster);
  if (display->motionSearchEnabled != 0) Motion_Search_Draw(display, part.width, part.height);
  if (!Show_Overlay(display, part.width, part.height, mdMode)) return;
  if (!Blt_To_Window(display, part)) return;
  Draw_Statistics(display);
  Call_Draw_Callback(display);
}

}  // namespace

void Display_Present(JdecDisplay* display, JdecRaster* raster, int32_t x, int32_t y, int32_t width, int32_t height,
                     int32_t mdMode) {
  display->lastRaster = raster;
  const bool onSecondary = Window_On_Secondary_Monitor(display) != 0;
  RECT client = {};
  GetClientRect(display->window, &client);
  const SIZE target = {client.right - client.left, Target_Height(client.right - client.left, width, height)};
  if (IsIconic(display->window) || target.cx < LeastShown || target.cy < LeastShown) return;

  const PicturePart part = {x, y, width, height};
  if (display->useDirectDraw == 0 || onSecondary) {
    Present_GDI(display, raster, part, target);
    Draw_Statistics(display);
  } else {
    Present_DirectDraw(display, raster, part, mdMode);
  }
}

HRESULT Display_Copy_Raster(IDirectDrawSurface* surface, const JdecRaster* raster) {
  if (!surface || !raster) return E_FAIL;
  IDirectDrawSurface_Restore(surface);
  DDSURFACEDESC locked = {};
  locked.dwSize = sizeof locked;
  const HRESULT result = IDirectDrawSurface_Lock(surface, nullptr, &locked, DDLOCK_WAIT, nullptr);
  if (FAILED(result)) return result;
  if (locked.lpSurface) {
    const size_t surfaceRow = size_t{locked.dwWidth} * locked.ddpfPixelFormat.dwRGBBitCount / 8;
    const size_t bytes = std::min(static_cast<size_t>(raster->pitch), surfaceRow);
    const auto rows = static_cast<int32_t>(std::min(static_cast<uint32_t>(raster->height), uint32_t{locked.dwHeight}));
    auto* row = static_cast<uint8_t*>(locked.lpSurface);
    for (int32_t i = 0; i < rows; ++i, row += locked.lPitch) std::memcpy(row, raster->rows[i], bytes);
  }
  IDirectDrawSurface_Unlock(surface, nullptr);
  return DD_OK;
}

int32_t Display_Restore(JdecDisplay* display) {
  if (FAILED(IDirectDrawSurface_Restore(display->primarySurface))) return 0;
  if (FAILED(IDirectDrawSurface_Restore(display->offscreenSurface))) return 0;
  if (!display->lastRaster) return 1;
  return SUCCEEDED(Display_Copy_Raster(display->offscreenSurface, display->lastRaster)) ? 1 : 0;
}

int32_t Target_Height(int32_t clientWidth, int32_t width, int32_t height) {
  if (width == 640 || width == 720) return static_cast<int32_t>(int64_t{clientWidth} * 480 / 640);
  return static_cast<int32_t>(std::min<int64_t>(int64_t{clientWidth} * height / width, INT32_MAX));
}
