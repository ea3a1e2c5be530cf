#include "pixel/compress_rows.h"

#include "kernels/kernels.h"
#include "pixel/color_tables.h"
#include "pixel/encode_tables.h"

#include <algorithm>
#include <cstring>

namespace {

/** The caller's picture, bottom row first. */
struct BottomUpRows {
  const uint8_t* pixels;
  size_t pitch;
  int32_t height;  ///< Rows of the picture.
  bool doubleRows;

  /** Row i of the picture from the top. With doubled rows, an odd last row is the same as the one above it. */
  [[nodiscard]] const uint8_t* Row(int32_t i) const {
    const int32_t fromBottom = doubleRows ? std::max(height / 2 - 1 - i / 2, 0) : height - 1 - i;
    return pixels + static_cast<size_t>(fromBottom) * pitch;
  }
};

/** Converts pairs of picture rows into the planes: from pair `from` up to pair `to`, without `to`. */
void Load_Pairs(JdecPlanes* planes, const BottomUpRows& source, int32_t from, int32_t to) {
  const int32_t rows = source.height / 2;
  for (int32_t r = from; r < to; ++r) {
    // The same as in Downsample_Plane.
    const int32_t evenBias = 1 + r % 2;
    const int32_t oddBias = rows % 2 ? 3 - evenBias : evenBias;
    kernels.toPlanes(source.Row(2 * r), source.Row(2 * r + 1), planes->yRows[2 * r], planes->yRows[2 * r + 1], planes->cbRows[r],
                     planes->crRows[r], planes->yWidth, evenBias, oddBias);
  }
}

/** The last row of an odd height has luma only. */
void Load_Last_Row(JdecPlanes* planes, const BottomUpRows& source) {
  const int32_t last = source.height - 1;
  uint8_t* const luma = planes->yRows[last];
  if (source.doubleRows && last == 0) {
    // There is no source row: the row is black.
    std::memset(luma, 0, static_cast<size_t>(planes->yWidth));
    return;
  }
  const uint8_t* const row = source.Row(last);
  uint8_t unused[2][256];
  for (int32_t x = 0; x < planes->yWidth; x += 256) {
    kernels.toYccRow(rgbYccTable, row + static_cast<ptrdiff_t>(3) * x, luma + x, unused[0], unused[1],
                     std::min(planes->yWidth - x, 256));
  }
}

/** Writes the last byte, filled with ones. False if there is no room for it. */
bool Flush_Bits(HuffWriter* writer) {
  if (writer->bitCount == 0) return true;
  const auto byte = static_cast<uint8_t>(writer->bits << (8 - writer->bitCount) | 0xFFu >> writer->bitCount);
  if (writer->end - writer->next < (byte == 0xFF ? 2 : 1)) return false;
  *writer->next++ = byte;
  if (byte == 0xFF) *writer->next++ = 0;
  return true;
}

}  // namespace

void Compress_Rows(JdecCodec* codec, const uint8_t* pixels, bool doubleRows) {
  JdecPlanes* const planes = codec->planes;
  JdecFrameBuffer* const frame = codec->frame;
  const int32_t width = codec->width, height = codec->height, units = height / 16;
  const BottomUpRows source = {pixels, static_cast<size_t>(width) * 3, height, doubleRows};
  HuffWriter writer = {frame->data + frame->length, frame->data + FrameStoreSize, 0, 0, {}};
  bool whole = true;
  for (int32_t m = 0; m < units; ++m) {
    Load_Pairs(planes, source, 8 * m, 8 * m + 8);
    const EncodeSource rows = {planes->yRows + static_cast<size_t>(m) * 16,
                               planes->cbRows + static_cast<size_t>(m) * 8,
                               planes->crRows + static_cast<size_t>(m) * 8,
                               codec->lumaForward,
                               codec->lumaInverse,
                               codec->chromaForward,
                               codec->chromaInverse};
    whole = whole && kernels.encodeRow(huffEncodeTables, &rows, width / 16, &writer);
  }
  Load_Pairs(planes, source, 8 * units, height / 2);
  if (height % 2) Load_Last_Row(planes, source);
  if (height / 8 > 2 * units) {
    kernels.forwardRow(planes->yRows + static_cast<size_t>(units) * 16, width / 8, codec->lumaForward, codec->lumaInverse,
                       codec->coefY[2 * units]);
  }
  whole = whole && Flush_Bits(&writer);
  codec->writeBuffer = 0;
  codec->writeCount = 0;
  codec->streamPtr = whole ? writer.next : writer.end;
  frame->length = codec->streamCount = whole ? static_cast<int32_t>(writer.next - frame->data) : FrameStoreSize + 1;
}
