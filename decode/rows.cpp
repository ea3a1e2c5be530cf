#include "decode/rows.h"

#include "decode/buffers.h"
#include "decode/huffman_codes.h"
#include "decode/idct.h"
#include "decode/strip_tables.h"
#include "decode/watermark.h"
#include "pixel/color_tables.h"

#include <algorithm>
#include <cstring>

/** The store's blocks and data lie behind it in one block of memory. */
static constexpr size_t BlocksSize = sizeof(int16_t) * StripMacroblocks * StripMacroblockSize;
static constexpr size_t Alignment = 64;

RowStore* Row_Store_New() {
  auto* const store =
      static_cast<RowStore*>(Arena_Alloc_Zeroed(sizeof(RowStore) + Alignment + BlocksSize + FrameStoreSize + 2 * StripPadding));
  if (!store) return nullptr;
  const auto behind = reinterpret_cast<uintptr_t>(store + 1);
  uint8_t* const blocks = reinterpret_cast<uint8_t*>(store + 1) + (Alignment - behind % Alignment);
  store->blocks = reinterpret_cast<int16_t*>(blocks);
  store->data = blocks + BlocksSize;
  return store;
}

void Row_Store_Free(RowStore* store) { Arena_Free(store); }

/** Sum of sizes that stays within the weight limit wherever among the first scan positions the coefficients are. */
static uint16_t Size_Limit(const StripQuant& quant, int32_t positions) {
  int32_t heaviest = 1;
  for (int32_t k = 1; k < positions; ++k) heaviest = std::max<int32_t>(heaviest, quant.weights[zigzagOrder[k]]);
  return static_cast<uint16_t>(StripWeightLimit / heaviest);
}

static void Set_Quant(StripQuant* quant, const int16_t* inverse) {
  for (int32_t i = 0; i < 64; ++i) {
    const int32_t row = i / 8;
    // In columns 0 and 4 the second pass multiplies nothing, in rows 0 and 4 neither does the first.
    const int32_t gain = i % 4 != 0 ? StripRowGains[row] : row % 4 != 0 ? 256 : 0;
    quant->factors[i] = inverse[i];
    quant->weights[i] = static_cast<int16_t>((inverse[i] * gain + 255) >> 8);
  }
  quant->narrowLimit = Size_Limit(*quant, StripNarrow);
  quant->middleLimit = Size_Limit(*quant, StripMiddle);
}

void Row_Store_Set_Tables(RowStore* store, const int16_t* lumaInverse, const int16_t* chromaInverse) {
  Set_Quant(&store->luma, lumaInverse);
  Set_Quant(&store->chroma, chromaInverse);
}

int32_t Rows_Available() { return kernels.decodeStrip != nullptr && useMmxIdct == 0; }

/** Hands the hidden-text positions of a strip's luma blocks over, of those blocks that reach them. */
static void Take_Hidden_Bits(const RowStore* store, int32_t macroblocks, WatermarkCollector* collector) {
  for (int32_t b = 0; b < 6 * macroblocks; ++b) {
    if ((store->reach.blocks[b] & 0xFF) <= WatermarkFirst || b % 6 >= 4) continue;
    const int16_t* const block = store->blocks + stripTables.offsets[b];
    int32_t scan[64];
    for (int32_t k = WatermarkFirst; k <= WatermarkLast; ++k) scan[k] = block[stripTables.places[k]];
    Watermark_Take_Block(collector, scan);
  }
}

/** The sample rows that a row of macroblocks writes: 16 of luma, 8 of Cb, 8 of Cr. */
struct MacroblockRows {
  uint8_t* rows[32];
};

static MacroblockRows Rows_Of(const JdecPlanes* planes, int32_t m) {
  MacroblockRows at{};
  std::copy_n(planes->yRows + static_cast<ptrdiff_t>(16) * m, 16, at.rows);
  std::copy_n(planes->cbRows + static_cast<ptrdiff_t>(8) * m, 8, at.rows + 16);
  std::copy_n(planes->crRows + static_cast<ptrdiff_t>(8) * m, 8, at.rows + 24);
  return at;
}

static void Move_Right(MacroblockRows* at, int32_t macroblocks) {
  for (int32_t i = 0; i < 32; ++i) at->rows[i] += (i < 16 ? 16 : 8) * macroblocks;
}

/** A luma block beyond the last macroblock has no coefficients. */
static void Fill_Last_Column(const MacroblockRows& behind, int32_t width) {
  if (width / 8 % 2 == 0) return;
  for (int32_t i = 0; i < 16; ++i) std::memset(behind.rows[i], 128, 8);
}

static void Decode_Row(JdecCodec* codec, StripReader* reader, int32_t m, int32_t* predictors, WatermarkCollector* collector) {
  RowStore* const store = codec->rows;
  MacroblockRows at = Rows_Of(codec->planes, m);
  for (int32_t left = codec->width / 16; left > 0;) {
    const int32_t count = std::min(left, StripMacroblocks);
    kernels.decodeStrip(reader, &stripTables, store->blocks, &store->reach, count);
    Take_Hidden_Bits(store, count, collector);
    kernels.transformStrip(store->blocks, &store->reach, count, &store->luma, &store->chroma, rangeLimit, predictors, at.rows);
    Move_Right(&at, count);
    left -= count;
  }
  Fill_Last_Column(at, codec->width);
}

/** A luma row of blocks below the last macroblock keeps its coefficients from frame to frame. */
static void Transform_Last_Row(const JdecCodec* codec, int32_t blockRow) {
  if (codec->height / 8 <= blockRow) return;
  uint8_t* const* const rows = codec->planes->yRows + static_cast<ptrdiff_t>(8) * blockRow;
  kernels.idctRow(codec->coefY[blockRow], codec->width / 8, codec->lumaInverse, rangeLimit, rows);
}

void Decode_Rows(JdecCodec* codec, const RowsTaker& taker) {
  const JdecFrameBuffer* const frame = codec->frame;
  const int32_t start = std::min(frame->position, frame->length);
  RowStore* const store = codec->rows;
  const size_t count = kernels.unstuff(frame->data + start, static_cast<size_t>(frame->length - start), store->data);
  StripReader reader = {store->data, 0, 8 * count};
  int32_t predictors[3] = {0, 0, 0};
  WatermarkCollector collector;
  const int32_t rows = codec->height / 16;
  for (int32_t m = 0; m < rows; ++m) {
    Decode_Row(codec, &reader, m, predictors, &collector);
    taker.take(taker.user, 8 * m, 8);
  }
  Watermark_Publish(collector);
  Transform_Last_Row(codec, 2 * rows);
  if (codec->height / 2 > 8 * rows) taker.take(taker.user, 8 * rows, codec->height / 2 - 8 * rows);
}
