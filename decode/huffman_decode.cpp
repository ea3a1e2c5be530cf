#include "decode/huffman_decode.h"

#include "decode/huffman_tables.h"
#include "decode/watermark.h"
#include "kernels/kernels.h"

#include <cstring>

/** Coefficients in a row of blocks of a plane of that width. */
static size_t Row_Size(int32_t width) { return static_cast<size_t>(width / 8) * 64; }

static void Clear_Row(int32_t* row, int32_t width) { std::memset(row, 0, Row_Size(width) * sizeof *row); }

void Huff_Decode_Frame(JdecCodec* codec, int32_t** coefY, int32_t** coefCb, int32_t** coefCr, int32_t width, int32_t height,
                       const JdecFrameBuffer* frame) {
  const int32_t start = frame->position < frame->length ? frame->position : frame->length;
  HuffReader reader = {frame->data + start, frame->data + frame->length, 0, 0};
  int32_t predictors[3] = {0, 0, 0};
  WatermarkCollector* const collector = codec->watermark;
  Watermark_Begin(collector);
  for (int32_t m = 0; m < height / 16; ++m) {
    Clear_Row(coefY[2 * m], width);
    Clear_Row(coefY[2 * m + 1], width);
    Clear_Row(coefCb[m], width / 2);
    Clear_Row(coefCr[m], width / 2);
    kernels.decodeRow(&reader, &huffTables, coefY[2 * m], coefY[2 * m + 1], coefCb[m], coefCr[m], width / 16, predictors,
                      Watermark_Take_Block, collector);
  }
  codec->bitBuffer = reader.bitBuffer;
  codec->bitCount = reader.bitCount;
  codec->streamPtr = frame->data + (reader.next - frame->data);
  codec->streamCount = static_cast<int32_t>(reader.next - (frame->data + start));
}
