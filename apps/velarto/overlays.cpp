#include "apps/velarto/overlays.h"

#include "decode/decoder.h"
#include "display/statistics.h"
#include "overlay/layer.h"
#include "overlay/motion_area.h"

#include <algorithm>
#include <cstring>

/** Values of JDEC_enable_MD: the layer, and the layer with the rectangle mode. */
static constexpr int32_t LayerOff = 0, LayerOn = 1, LayerWithRectangle = 3;

/** A bitmap of the window system, which JDEC_set_*_bmp will own; null for an empty picture. */
static HBITMAP Bitmap_Of(const Picture& picture) {
  if (picture.pixels.empty()) return nullptr;
  const size_t row = static_cast<size_t>(picture.width) * 3, pitch = (row + 3) / 4 * 4;
  std::vector<uint8_t> aligned(pitch * static_cast<size_t>(picture.height));
  for (int32_t y = 0; y < picture.height; ++y) {
    std::memcpy(&aligned[static_cast<size_t>(y) * pitch], &picture.pixels[static_cast<size_t>(y) * row], row);
  }
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = picture.width;
  info.bmiHeader.biHeight = picture.height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  const HDC screen = GetDC(nullptr);
  const HBITMAP bitmap = CreateDIBitmap(screen, &info.bmiHeader, CBM_INIT, aligned.data(), &info, DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  return bitmap;
}

/** Gives the operation a bitmap of the picture, and deletes it if it isn't accepted. */
static void Set_Bitmap(const Picture& picture, JdecDecoder* decoder, bool position) {
  const HBITMAP bitmap = Bitmap_Of(picture);
  if (position) {
    if (!JDEC_set_pos_bmp(decoder, bitmap) && bitmap) DeleteObject(bitmap);
    return;
  }
  JDEC_set_ptz_bmp(decoder, bitmap);
  if (bitmap && !decoder->display->ptzEnabled) DeleteObject(bitmap);
}

static void Apply_Layer(const Overlays& overlays, JdecDecoder* decoder) {
  JDEC_enable_MD(decoder, !overlays.layer ? LayerOff : overlays.rectangle ? LayerWithRectangle : LayerOn);
}

static void Apply_Ptz(const Overlays& overlays, JdecDecoder* decoder) {
  Set_Bitmap(overlays.ptz ? overlays.ptzPicture : Picture(), decoder, false);
}

static void Apply_Rectangle(const Overlays& overlays, JdecDecoder* decoder) {
  if (!overlays.rectangle) return;
  const PlacedRect& rect = *overlays.rectangle;
  JDEC_show_rectangle(decoder, rect.x, rect.y, rect.width, rect.height, 0);
}

void Overlays_Apply(const Overlays& overlays, JdecDecoder* decoder) {
  if (!decoder || !decoder->display) return;
  JDEC_enable_MD(decoder, overlays.rectangle ? LayerWithRectangle : LayerOn);
  if (overlays.area) {
    const PlacedRect& area = *overlays.area;
    const int32_t rows = Area_Rows(decoder->width, decoder->height);
    JDEC_set_MD_area_2(decoder, area.x, Within_Reach(area.y) * rows, area.width, Within_Reach(area.height) * rows, 0);
  }
  for (int row = 0; row < MotionRows; ++row) {
    for (int column = 0; column < MotionColumns; ++column) {
      if (overlays.marked[static_cast<size_t>(row)][static_cast<size_t>(column)]) JDEC_set_MD_area(decoder, column, row, 1);
    }
  }
  Apply_Rectangle(overlays, decoder);
  Apply_Layer(overlays, decoder);
  Apply_Ptz(overlays, decoder);
  Set_Bitmap(overlays.positionPicture, decoder, true);
  JDEC_SetMotionSeachString(decoder, overlays.caption.c_str());
  JDEC_SetMotionSeachArea(decoder, overlays.motionRect.left, overlays.motionRect.top, overlays.motionRect.right,
                          overlays.motionRect.bottom);
  JDEC_SetMotionSeachEnable(decoder, overlays.motion);
  Display_Show_Statistics(decoder->display, overlays.statistics);
}

void Overlays_Toggle_Layer(Overlays* overlays, JdecDecoder* decoder) {
  overlays->layer = !overlays->layer;
  Apply_Layer(*overlays, decoder);
}

void Overlays_Toggle_Statistics(Overlays* overlays, JdecDecoder* decoder) {
  overlays->statistics = !overlays->statistics;
  Display_Show_Statistics(decoder->display, overlays->statistics);
}

void Overlays_Toggle_Motion(Overlays* overlays, JdecDecoder* decoder) {
  overlays->motion = !overlays->motion;
  JDEC_SetMotionSeachEnable(decoder, overlays->motion);
}

void Overlays_Toggle_Ptz(Overlays* overlays, JdecDecoder* decoder) {
  overlays->ptz = !overlays->ptz;
  Apply_Ptz(*overlays, decoder);
}

void Overlays_Move_Rectangle(Overlays* overlays, JdecDecoder* decoder, int x, int y) {
  if (!overlays->rectangle) return;
  PlacedRect& rect = *overlays->rectangle;
  const auto [across, down] = Rectangle_Scale(decoder->width, decoder->height);
  rect.x = std::clamp(Within_Reach(rect.x) + x, 0, std::max(decoder->width / across - rect.width, 0));
  rect.y = std::clamp(Within_Reach(rect.y) + y, 0, std::max(decoder->height / down - rect.height, 0));
  Apply_Rectangle(*overlays, decoder);
}

bool Overlays_Click(Overlays* overlays, JdecDecoder* decoder, int x, int y) {
  const CellGeometry cell = Cell_Geometry(decoder->width, decoder->height);
  const int column = x / cell.width, row = y / cell.height;
  if (x < 0 || y < 0 || column >= MotionColumns || row >= MotionRows) return false;
  bool& marked = overlays->marked[static_cast<size_t>(row)][static_cast<size_t>(column)];
  marked = !marked;
  JDEC_set_MD_area(decoder, column, row, marked);
  overlays->layer = true;
  Apply_Layer(*overlays, decoder);
  return true;
}
