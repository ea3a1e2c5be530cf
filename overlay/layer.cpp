#include "overlay/layer.h"

#include "overlay/lines.h"

#include "platform/win32.h"

#include <algorithm>

static constexpr int32_t DoubleWidth = 640;

int32_t Within_Reach(int32_t value) { return std::clamp(value, -FarAway, FarAway); }

bool Layer_Lock(JdecDisplay* display, Layer* layer) {
  if (!display || !display->offscreenSurface) return false;
  *layer = {};
  layer->owner = display->offscreenSurface;
  layer->surface.dwSize = sizeof layer->surface;
  IDirectDrawSurface_Restore(layer->owner);
  if (FAILED(IDirectDrawSurface_Lock(layer->owner, nullptr, &layer->surface, DDLOCK_WAIT, nullptr))) return false;
  layer->width = display->bitmapInfo->bmiHeader.biWidth;
  layer->height = display->bitmapInfo->bmiHeader.biHeight;
  const SurfaceLayout layout = Surface_Layout(layer->width, layer->height);
  layer->rows = layout.layerRows;
  layer->templateRow = layout.templateRow - layer->height;
  layer->bytes = static_cast<int32_t>(layer->surface.ddpfPixelFormat.dwRGBBitCount / 8);
  if (layer->surface.lpSurface && layer->rows > 0) {
    layer->pixels = static_cast<uint8_t*>(layer->surface.lpSurface) + ptrdiff_t{layer->height} * layer->surface.lPitch;
  }
  return true;
}

void Layer_Unlock(const Layer& layer) { IDirectDrawSurface_Unlock(layer.owner, nullptr); }

uint8_t* Layer_At(const Layer& layer, int32_t column, int32_t row) {
  return layer.pixels + ptrdiff_t{row} * layer.surface.lPitch + ptrdiff_t{column} * layer.bytes;
}

/** Clips a line to positions from 0 up to `end` and sorts its ends. One with no length isn't changed. False if nothing remains.
 */
static bool Clip_Line(int32_t* from, int32_t* to, int32_t end) {
  if (*from == *to) return *from >= 0 && *from < end;
  const auto [low, high] = std::minmax(*from, *to);
  const int32_t cutLow = std::max(low, 0), cutHigh = std::min(high, end);
  *from = cutLow;
  *to = cutHigh;
  return cutLow < cutHigh;
}

static int32_t Drawable_Rows(const Layer& layer) { return layer.rows + (layer.width == DoubleWidth ? 1 : 0); }

void Layer_Horizontal(const Layer& layer, int32_t from, int32_t to, int32_t row, uint32_t color) {
  if (row < 0 || row >= Drawable_Rows(layer) || !Clip_Line(&from, &to, layer.width)) return;
  horizontalLine.load()(&layer.surface, layer.pixels, from, to, row, color);
}

void Layer_Vertical(const Layer& layer, int32_t from, int32_t to, int32_t column, uint32_t color) {
  if (column < 0 || column >= layer.width || !Clip_Line(&from, &to, Drawable_Rows(layer))) return;
  verticalLine.load()(&layer.surface, layer.pixels, from, to, column, color);
}

void Layer_Outline(const Layer& layer, const LayerRect& rect, uint32_t color) {
  const int32_t right = rect.x + rect.width, bottom = rect.y + rect.height;
  Layer_Horizontal(layer, rect.x, right, rect.y, color);
  Layer_Horizontal(layer, rect.x, right, bottom - 1, color);
  Layer_Vertical(layer, rect.y, bottom, rect.x, color);
  Layer_Vertical(layer, rect.y, bottom, right - 1, color);
  if (layer.width != DoubleWidth) return;
  Layer_Horizontal(layer, rect.x, right, rect.y + 1, color);
  Layer_Horizontal(layer, rect.x, right, bottom, color);
  Layer_Vertical(layer, rect.y, bottom, rect.x + 1, color);
  Layer_Vertical(layer, rect.y, bottom, right, color);
}

LayerRect Moved_Inside(const LayerRect& rect, int32_t width, int32_t height) {
  LayerRect moved = rect;
  if (moved.x + moved.width > width) moved.x = width - moved.width;
  if (moved.y + moved.height > height) moved.y = height - moved.height;
  moved.x = std::max(moved.x, 0);
  moved.y = std::max(moved.y, 0);
  return moved;
}
