#include "decode/rows.h"

#include "decode/huffman_codes.h"
#include "decode/idct.h"
#include "decode/strip_tables.h"
#include "pixel/arena.h"
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

/** Most bytes that a macroblock can take: in each block DC of 20 bits, 22 in chroma, and 63 codes of 16 bits with values of 10.
 */
constexpr size_t MostMacroblockBytes = (4 * 20 + 2 * 22 + 6 * 63 * 26 + 7) / 8;

/** Sees to it that the reader has all the data that the strip can take. Of a frame that brings more than its picture needs, the
 * rest is never looked at. */
static void Remove_Stuffing(RowsRun* run) {
  StripReader* const reader = &run->reader;
  const size_t held = (reader->end - reader->position) / 8, needed = MostMacroblockBytes * static_cast<size_t>(run->strip) + 1;
  if (held >= needed || run->stuffed == run->stuffedEnd) return;
  uint8_t* const behind = run->codec->rows->data + reader->end / 8;
  reader->end += 8 * kernels.unstuff(&run->stuffed, run->stuffedEnd, behind, 2 * needed - held);
}

/** Moves on to the rest when a strip begins behind the data's end. A picture narrower than a macroblock has no block to repeat.
 */
static void Look_For_Rest(RowsRun* run) {
  if (run->reader.position < run->reader.end || run->strip == 0) return;
  run->rest = run->rest == RowsRest::No ? RowsRest::First : RowsRest::Known;
}

static void Keep_Rest_Scan(RowsRun* run) {
  const RowStore* const store = run->codec->rows;
  for (int32_t k = WatermarkFirst; k <= WatermarkLast; ++k) run->restScan[k] = store->blocks[stripTables.places[k]];
}

static void Keep_Rest_Samples(RowsRun* run) {
  for (int32_t i = 0; i < 24; ++i) std::memcpy(run->restSamples + static_cast<ptrdiff_t>(8) * i, run->rows[i < 8 ? i : 8 + i], 8);
}

/** Writes the samples of a strip of the rest. */
static void Repeat_Rest(const RowsRun* run) {
  for (int32_t i = 0; i < 32; ++i) {
    const uint8_t* const from = run->restSamples + static_cast<ptrdiff_t>(8) * (i < 16 ? i % 8 : i - 8);
    const int32_t width = (i < 16 ? 16 : 8) * run->strip;
    for (int32_t x = 0; x < width; x += 8) std::memcpy(run->rows[i] + x, from, 8);
  }
}

static void Point_To_Row(RowsRun* run) {
  const JdecPlanes* const planes = run->codec->planes;
  const int32_t m = run->row;
  std::copy_n(planes->yRows + static_cast<ptrdiff_t>(16) * m, 16, run->rows);
  std::copy_n(planes->cbRows + static_cast<ptrdiff_t>(8) * m, 8, run->rows + 16);
  std::copy_n(planes->crRows + static_cast<ptrdiff_t>(8) * m, 8, run->rows + 24);
}

void Rows_Open(RowsRun* run, JdecCodec* codec) {
  const JdecFrameBuffer* const frame = codec->frame;
  const int32_t start = std::min(frame->position, frame->length);
  run->codec = codec;
  run->stuffed = frame->data + start;
  run->stuffedEnd = frame->data + frame->length;
  run->reader = {codec->rows->data, 0, 0};
  std::memset(codec->rows->data, 0, StripPadding);  // Where there is no data it is all that is read.
  run->predictors[0] = run->predictors[1] = run->predictors[2] = 0;
  Watermark_Begin(codec->watermark);
  run->row = run->column = run->strip = 0;
  run->rest = RowsRest::No;
}

/** From this many luma samples on the planes are not found in the caches nearest to the processor. */
static constexpr int64_t LargePicture = 640 * 1024;

/** Has the lines that the strip's samples go to brought near while the strip is decoded: 32 rows at a time are more than the
 *  processor foresees by itself. */
static void Fetch_Ahead(const RowsRun* run) {
  for (int32_t i = 0; i < 32; ++i) {
    const int32_t width = (i < 16 ? 16 : 8) * run->strip;
    for (int32_t x = 0; x < width; x += 64) __builtin_prefetch(run->rows[i] + x, 1);
  }
}

int32_t Rows_Decode_Strip(RowsRun* run) {
  const JdecCodec* const codec = run->codec;
  if (run->row == codec->height / 16) return 0;
  RowStore* const store = codec->rows;
  if (run->column == 0) Point_To_Row(run);
  run->strip = std::min(codec->width / 16 - run->column, StripMacroblocks);
  Remove_Stuffing(run);
  Look_For_Rest(run);
  if (run->rest == RowsRest::Known) {
    for (int32_t b = 0; b < 4 * run->strip; ++b) Watermark_Take_Block(run->codec->watermark, run->restScan);
    return 1;
  }
  if (int64_t{codec->width} * codec->height >= LargePicture) Fetch_Ahead(run);
  kernels.decodeStrip(&run->reader, &stripTables, store->blocks, &store->reach, run->strip);
  if (run->rest == RowsRest::First) Keep_Rest_Scan(run);
  Take_Hidden_Bits(store, run->strip, run->codec->watermark);
  return 1;
}

int32_t Rows_Transform_Strip(RowsRun* run) {
  const JdecCodec* const codec = run->codec;
  RowStore* const store = codec->rows;
  if (run->rest == RowsRest::Known) {
    Repeat_Rest(run);
  } else {
    kernels.transformStrip(store->blocks, &store->reach, run->strip, &store->luma, &store->chroma, run->predictors, run->rows);
  }
  if (run->rest == RowsRest::First) Keep_Rest_Samples(run);
  for (int32_t i = 0; i < 32; ++i) run->rows[i] += (i < 16 ? 16 : 8) * run->strip;
  run->column += run->strip;
  if (run->column < codec->width / 16) return 0;
  // A luma block beyond the last macroblock has no coefficients.
  for (int32_t i = 0; codec->width / 8 % 2 != 0 && i < 16; ++i) std::memset(run->rows[i], 128, 8);
  run->column = 0;
  ++run->row;
  return 1;
}

void Rows_Close(RowsRun* run) {
  const JdecCodec* const codec = run->codec;
  // A luma row of blocks below the last macroblock keeps its coefficients from frame to frame.
  const int32_t last = 2 * run->row;
  if (codec->height / 8 <= last) return;
  uint8_t* const* const rows = codec->planes->yRows + static_cast<ptrdiff_t>(8) * last;
  kernels.idctRow(codec->coefY[last], codec->width / 8, codec->lumaInverse, rangeLimit, rows);
}

void Decode_Rows(JdecCodec* codec, const RowsTaker& taker) {
  RowsRun run;
  Rows_Open(&run, codec);
  while (Rows_Decode_Strip(&run)) {
    if (Rows_Transform_Strip(&run)) taker.take(taker.user, 8 * (run.row - 1), 8);
  }
  Rows_Close(&run);
  const int32_t done = 8 * run.row, all = (codec->height + 1) / 2;
  if (all > done) taker.take(taker.user, done, all - done);
}
