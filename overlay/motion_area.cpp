/* The exports that change the motion-area layer (velarto.h). */
#include "overlay/motion_area.h"

#include "decode/decoder.h"
#include "overlay/layer.h"
#include "overlay/motion_state.h"

#include "platform/win32.h"

#include <algorithm>
#include <cstring>

namespace {

/** Bit of JDEC_enable_MD's value that turns on the rectangle mode. */
constexpr int32_t RectModeBit = 2;

/** Fills a cell without its lines, clipped to the layer: marked, with the hatch at the left of the template's first strip;
 *  otherwise with black. That isn't copied: a narrow picture has no black beside the hatch. */
void Fill_Cell(const Layer& layer, int32_t column, int32_t row, bool marked) {
  const CellGeometry cell = Cell_Geometry(layer.width, layer.height);
  const int32_t left = column * cell.width + cell.left, top = row * cell.height + cell.top;
  const int32_t width = std::min(cell.width - cell.left, layer.width - left);
  const int32_t height = std::min(cell.height - cell.top, layer.rows - top);
  if (width <= 0) return;
  const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(layer.bytes);
  for (int32_t i = 0; i < height; ++i) {
    uint8_t* const to = Layer_At(layer, left, top + i);
    if (marked) {
      std::memmove(to, Layer_At(layer, 0, layer.templateRow + i), bytes);
    } else {
      std::memset(to, 0, bytes);
    }
  }
}

void Fill_With_Checker(const Layer& layer) {
  const size_t bytes = static_cast<size_t>(layer.width) * static_cast<size_t>(layer.bytes);
  const bool doubled = layer.width == 640 && layer.height == 480;
  const int32_t first = layer.templateRow + (doubled ? 30 : 15), count = doubled ? 4 : 2;
  for (int32_t row = 0; row < layer.rows; ++row) {
    std::memmove(Layer_At(layer, 0, row), Layer_At(layer, 0, first + row % count), bytes);
  }
}

/** Makes a rectangle of the layer transparent. */
void Open_Area(const Layer& layer, const LayerRect& area) {
  const int32_t first = std::max(area.y, 0), end = std::min(area.y + area.height, layer.rows);
  for (int32_t row = first; row < end; ++row) Layer_Horizontal(layer, area.x, area.x + area.width, row, 0);
}

}  // namespace

CellGeometry Cell_Geometry(int32_t width, int32_t height) {
  if (width != 640) return {16, 16, 1, 1};
  return height == 480 ? CellGeometry{32, 32, 2, 2} : CellGeometry{32, 16, 2, 1};
}

int32_t Area_Rows(int32_t width, int32_t height) { return width == 640 && height == 240 ? 2 : 1; }

void VELARTO_CDECL JDEC_enable_MD(JdecDecoder* decoder, int32_t value) {
  if (!decoder) return;
  decoder->mdMode = value;
  if (value != 0) mdRectMode = (value & RectModeBit) != 0;
}

void VELARTO_CDECL JDEC_set_MD_color(int32_t which) { mdColor = which == 0 ? mdColorFirst.load() : mdColorSecond.load(); }

void VELARTO_CDECL JDEC_set_MD_area(JdecDecoder* decoder, int32_t column, int32_t row, int32_t marked) {
  Layer layer;
  if (!decoder || !Layer_Lock(decoder->display, &layer)) return;
  column = std::clamp(column, 0, MotionColumns - 1);
  row = std::clamp(row, 0, MotionRows - 1);
  if (layer.surface.lpSurface) decoder->display->motionCells[row * MotionColumns + column] = marked != 0;
  if (layer.pixels) Fill_Cell(layer, column, row, marked != 0);
  Layer_Unlock(layer);
}

void VELARTO_CDECL JDEC_set_MD_area_2(JdecDecoder* decoder, int32_t left, int32_t top, int32_t width, int32_t height,
                                      int32_t /*unused*/) {
  Layer layer;
  if (!decoder || !Layer_Lock(decoder->display, &layer)) return;
  LayerRect area = {Within_Reach(left), Within_Reach(top), Within_Reach(width), Within_Reach(height)};
  if (Area_Rows(layer.width, layer.height) == 2) {
    area.y >>= 1;
    area.height >>= 1;
  }
  area = Moved_Inside(area, layer.width, layer.height);
  if (layer.pixels) {
    Fill_With_Checker(layer);
    Open_Area(layer, area);
    Layer_Outline(layer, area, mdColor);
  }
  Set_Last_Rect(area);
  Layer_Unlock(layer);
}
