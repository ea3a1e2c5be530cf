/* The stretching copy. Within one format pixel values are copied unchanged: rows of the same width whole, others by a map of the
 * columns. Everything else is converted to colours, a source row at a time. */
#include "platform/portable/paint/pixel_mix.h"
#include "platform/portable/paint/pixel_rows.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

/* ---- The plan of a copy --------------------------------------------------------------------------------------------------- */

/** A row of source colours at the target's width. */
struct StretchedRow {
  int32_t row;  ///< Which one it is.
  std::vector<uint32_t> colors;
};

/** Memory kept from copy to copy, so that showing a picture allocates nothing. */
struct CopyStore {
  ColumnMap columns;
  std::vector<uint32_t> source;  ///< A source row and one more word.
  StretchedRow stretched[2];
  std::vector<uint32_t> mixed;
};
thread_local CopyStore store;

/** A copy and the part of its target that lies in the view. */
struct CopyPlan {
  const PixelCopy& copy;
  RECT area;
  int32_t width, skipped, bytes;  ///< Its columns, columns of the target left of it, and bytes of a target pixel.
  bool sameWidth, sameHeight;
  bool smooth;
};

/** Gives false when nothing of the target lies in the view. */
bool Plan_Copy(CopyPlan& plan, bool smooth) {
  const PixelCopy& copy = plan.copy;
  plan.area = Rect_Common(copy.target, {0, 0, copy.to.width, copy.to.height});
  if (Rect_Is_Empty(plan.area) || !copy.to.pixels || !copy.from.pixels) return false;
  plan.width = plan.area.right - plan.area.left;
  plan.skipped = plan.area.left - copy.target.left;
  plan.bytes = copy.to.format.bits / 8;
  const int32_t targetWidth = copy.target.right - copy.target.left, sourceWidth = copy.source.right - copy.source.left;
  plan.sameWidth = targetWidth == sourceWidth;
  plan.sameHeight = copy.target.bottom - copy.target.top == copy.source.bottom - copy.source.top;
  plan.smooth = smooth && !(plan.sameWidth && plan.sameHeight);
  if (!plan.sameWidth) Map_Columns(store.columns, targetWidth, sourceWidth, plan.skipped, plan.width, plan.smooth);
  return true;
}

MapEntry Map_Row(const CopyPlan& plan, int32_t y) {
  const PixelCopy& copy = plan.copy;
  return Map_Place(y - copy.target.top, copy.target.bottom - copy.target.top, copy.source.bottom - copy.source.top, plan.smooth);
}

uint8_t* Target_Row(const CopyPlan& plan, int32_t y) { return Row_Of(plan.copy.to, plan.area.left, y); }

/** Source row of that number at its left end or, where the widths agree, at the column that the area begins with. */
const uint8_t* Source_Row(const CopyPlan& plan, int32_t row) {
  const PixelCopy& copy = plan.copy;
  return Row_Of(copy.from, copy.source.left + (plan.sameWidth ? plan.skipped : 0), copy.source.top + row);
}

/* ---- Pixel values --------------------------------------------------------------------------------------------------------- */

struct Pixel24 {
  uint8_t bytes[3];
};

template <typename Pixel>
inline Pixel Load(const uint8_t* row, int32_t x) {
  Pixel pixel;
  std::memcpy(&pixel, row + static_cast<size_t>(x) * sizeof pixel, sizeof pixel);
  return pixel;
}

template <typename Pixel>
inline void Store(uint8_t* row, int32_t x, Pixel pixel) {
  std::memcpy(row + static_cast<size_t>(x) * sizeof pixel, &pixel, sizeof pixel);
}

template <typename Pixel>
void Pick_Pixels(const uint8_t* from, uint8_t* to) {
  const int32_t* const first = store.columns.first.data();
  for (int32_t i = 0; i < store.columns.width; ++i) Store(to, i, Load<Pixel>(from, first[i]));
}

/** A source row at the target's width, pixel values unchanged. */
void Pick_Row(const CopyPlan& plan, const uint8_t* from, uint8_t* to) {
  if (plan.bytes == 1) Pick_Pixels<uint8_t>(from, to);
  if (plan.bytes == 2) Pick_Pixels<uint16_t>(from, to);
  if (plan.bytes == 3) Pick_Pixels<Pixel24>(from, to);
  if (plan.bytes == 4) Pick_Pixels<uint32_t>(from, to);
}

void Copy_Values(const CopyPlan& plan) {
  const size_t rowBytes = static_cast<size_t>(plan.width) * static_cast<size_t>(plan.bytes);
  int32_t last = -1;
  for (int32_t y = plan.area.top; y < plan.area.bottom; ++y) {
    const int32_t row = Map_Row(plan, y).first;
    if (plan.sameWidth) {
      std::memcpy(Target_Row(plan, y), Source_Row(plan, row), rowBytes);
    } else if (row == last) {
      std::memcpy(Target_Row(plan, y), Target_Row(plan, y - 1), rowBytes);
    } else {
      Pick_Row(plan, Source_Row(plan, row), Target_Row(plan, y));
    }
    last = row;
  }
}

/** Values from `low` on, `span` + 1 of them, are the key. */
struct KeyRange {
  uint32_t low, span;
};

template <typename Value>
void Key_Values(const uint8_t* from, int32_t count, KeyRange key, uint32_t colorBits, uint8_t* to) {
  const auto low = static_cast<Value>(key.low), span = static_cast<Value>(key.span), bits = static_cast<Value>(colorBits);
  for (int32_t i = 0; i < count; ++i) {
    const auto pixel = Load<Value>(from, i), below = Load<Value>(to, i);
    const auto above = static_cast<Value>(static_cast<Value>(pixel & bits) - low);
    Store(to, i, above > span ? pixel : below);
  }
}

void Key_Values_24(const uint8_t* from, int32_t count, KeyRange key, uint8_t* to) {
  // Most of a layer is its key, of one value: four such pixels are skipped at once.
  uint8_t four[12];
  for (int32_t i = 0; i < 4; ++i) Store_Pixel(four + 3 * i, 24, key.low);
  for (int32_t i = 0; i < count;) {
    if (i + 4 <= count && std::memcmp(from + 3 * i, four, sizeof four) == 0) {
      i += 4;
      continue;
    }
    const uint32_t pixel = Load_Pixel(from + 3 * i, 24);
    if (pixel - key.low > key.span) Store(to, i, Load<Pixel24>(from, i));
    ++i;
  }
}

/** Copies a source row of the target's width over a target row, without the key. */
void Key_Row(const CopyPlan& plan, const uint8_t* from, KeyRange key, uint8_t* to) {
  if (plan.bytes == 1) Key_Values<uint8_t>(from, plan.width, key, 0xFF, to);
  if (plan.bytes == 2) Key_Values<uint16_t>(from, plan.width, key, 0xFFFF, to);
  if (plan.bytes == 3) Key_Values_24(from, plan.width, key, to);
  // The upper byte of a 32-bit pixel is no part of its colour.
  if (plan.bytes == 4) Key_Values<uint32_t>(from, plan.width, key, 0xFFFFFF, to);
}

/** Copies all pixels but the key's. */
void Copy_Keyed(const CopyPlan& plan, KeyRange key) {
  store.source.resize(static_cast<size_t>(plan.width));
  auto* const picked = reinterpret_cast<uint8_t*>(store.source.data());
  for (int32_t y = plan.area.top; y < plan.area.bottom; ++y) {
    const uint8_t* from = Source_Row(plan, Map_Row(plan, y).first);
    if (!plan.sameWidth) Pick_Row(plan, from, picked);
    Key_Row(plan, plan.sameWidth ? from : picked, key, Target_Row(plan, y));
  }
}

/* ---- Colours -------------------------------------------------------------------------------------------------------------- */

/** Pixels of 24 and 32 bits are mixed as they lie in the target; others as colours. */
bool Mixes_Pixels(const CopyPlan& plan) { return plan.bytes >= 3; }

/** Bytes of a stretched row. */
size_t Row_Bytes(const CopyPlan& plan) { return static_cast<size_t>(plan.width) * (plan.bytes == 3 ? 3 : 4); }

/** Gives a source row at the target's width. Two rows are kept, as the second row of one mixture is the first of the next. */
const uint8_t* Stretch_Row(const CopyPlan& plan, int32_t row) {
  StretchedRow& out = store.stretched[row & 1];
  auto* const bytes = reinterpret_cast<uint8_t*>(out.colors.data());
  if (out.row == row) return bytes;
  out.row = row;
  const PixelCopy& copy = plan.copy;
  if (plan.sameWidth) {
    Read_Row(copy.from.format, Source_Row(plan, row), plan.width, out.colors.data());
  } else {
    Read_Row(copy.from.format, Source_Row(plan, row), copy.source.right - copy.source.left, store.source.data());
    if (plan.smooth) {
      Mix_Columns(store.source.data(), store.columns, out.colors.data());
    } else {
      Pick_Pixels<uint32_t>(reinterpret_cast<const uint8_t*>(store.source.data()), bytes);
    }
  }
  // In place: writing never passes reading.
  if (plan.bytes == 3) Write_Row(copy.to.format, out.colors.data(), plan.width, bytes);
  return bytes;
}

/** Writes one target row. */
void Compose_Row(const CopyPlan& plan, const MapEntry& place, uint8_t* to) {
  const uint8_t* row = Stretch_Row(plan, place.first);
  if (place.weight != 0) {
    uint8_t* const mixed = Mixes_Pixels(plan) ? to : reinterpret_cast<uint8_t*>(store.mixed.data());
    Mix_Rows(row, Stretch_Row(plan, place.first + 1), place.weight, Row_Bytes(plan), mixed);
    row = mixed;
  }
  if (row == to) return;
  if (Mixes_Pixels(plan)) {
    std::memcpy(to, row, Row_Bytes(plan));
  } else {
    Write_Row(plan.copy.to.format, reinterpret_cast<const uint32_t*>(row), plan.width, to);
  }
}

/** Copies colours: formats differ, or neighbours are mixed. */
void Copy_Colors(const CopyPlan& plan) {
  // After an odd last column one more is written.
  const auto room = static_cast<size_t>(plan.width) + 1;
  store.source.resize(static_cast<size_t>(plan.copy.source.right - plan.copy.source.left) + 1);
  store.mixed.resize(room);
  for (StretchedRow& stretched : store.stretched) {
    stretched.row = -1;
    stretched.colors.resize(room);
  }
  MapEntry last = {-1, 0};
  for (int32_t y = plan.area.top; y < plan.area.bottom; ++y) {
    const MapEntry place = Map_Row(plan, y);
    if (place.first == last.first && place.weight == last.weight) {
      std::memcpy(Target_Row(plan, y), Target_Row(plan, y - 1),
                  static_cast<size_t>(plan.width) * static_cast<size_t>(plan.bytes));
    } else {
      Compose_Row(plan, place, Target_Row(plan, y));
    }
    last = place;
  }
}

/** From one palette to another at the same size: by a table of indices. */
void Copy_Indices(const CopyPlan& plan) {
  uint8_t map[256];
  Map_Indices(plan.copy.from.format, plan.copy.to.format, map);
  for (int32_t y = plan.area.top; y < plan.area.bottom; ++y) {
    const uint8_t* const from = Source_Row(plan, Map_Row(plan, y).first);
    uint8_t* const to = Target_Row(plan, y);
    for (int32_t i = 0; i < plan.width; ++i) to[i] = map[from[i]];
  }
}

}  // namespace

void Copy_Pixels(const PixelCopy& copy) {
  CopyPlan plan = {copy, {}, 0, 0, 0, false, false, false};
  if (!Plan_Copy(plan, copy.smooth)) return;
  const bool sameSize = plan.sameWidth && plan.sameHeight;
  if (sameSize && Formats_Equal(copy.to.format, copy.from.format)) {
    Copy_Values(plan);
  } else if (sameSize && copy.to.format.bits == 8 && copy.from.format.bits == 8) {
    Copy_Indices(plan);
  } else {
    Copy_Colors(plan);
  }
}

void Copy_Pixels_Keyed(const PixelCopy& copy, uint32_t keyLow, uint32_t keyHigh) {
  CopyPlan plan = {copy, {}, 0, 0, 0, false, false, false};
  if (!Plan_Copy(plan, false)) return;
  const int32_t bits = copy.to.format.bits;
  const uint32_t most = bits == 8 ? 0xFF : bits == 16 ? 0xFFFF : 0xFFFFFF;
  const uint32_t low = bits == 32 ? keyLow & most : keyLow, high = bits == 32 ? keyHigh & most : std::min(keyHigh, most);
  if (low > high) {
    Copy_Values(plan);
  } else {
    Copy_Keyed(plan, {low, high - low});
  }
}
