/* The moving rectangle (velarto.h). */
#include "decode/decoder.h"
#include "overlay/layer.h"
#include "overlay/motion_area.h"
#include "overlay/motion_state.h"

RectangleScale Rectangle_Scale(int32_t width, int32_t height) {
  if (width != 640) return {1, 1};
  return {2, height == 480 ? 2 : 1};
}

static LayerRect Scaled(const LayerRect& rect, int32_t width, int32_t height) {
  const auto [across, down] = Rectangle_Scale(width, height);
  return {rect.x * across, rect.y * down, rect.width * across, rect.height * down};
}

void VELARTO_CDECL JDEC_show_rectangle(JdecDecoder* decoder, int32_t x, int32_t y, int32_t width, int32_t height, int32_t hide) {
  Layer layer;
  if (!decoder || mdRectMode == 0 || !Layer_Lock(decoder->display, &layer)) return;
  const LayerRect asked = {Within_Reach(x), Within_Reach(y), Within_Reach(width), Within_Reach(height)};
  const LayerRect rect = Moved_Inside(Scaled(asked, layer.width, layer.height), layer.width, layer.height);
  if (layer.pixels) {
    Layer_Outline(layer, Last_Rect(), 0);
    if (hide == 0) Layer_Outline(layer, rect, mdColorSecond);
  }
  Set_Last_Rect(rect);
  Layer_Unlock(layer);
}
