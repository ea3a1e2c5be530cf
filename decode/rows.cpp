#include "decode/rows.h"

#include "decode/huffman_codes.h"
#include "decode/idct.h"
#include "decode/strip_tables.h"
#include "decode/watermark.h"
#include "pixel/arena.h"
#include "pixel/color_tables.h"

#include <algorithm>
#include <cstring>

/** The store's blocks and data follow it in the same block of memory. */
static constexpr size_t BlocksSize = sizeof(int16_t) * StripMacroblocks * StripMacroblockSize;
static constexpr size_t Alignment = 64;

RowStore* Row_Store_New() {
  auto* const store =
      static_cast<RowStore*>(Arena_Alloc_Zeroed(sizeof(RowStore) + Alignment + BlocksSize + FrameStoreSize + 2 * StripPadding));
  if (!store) return nullptr;
  const auto end = reinterpret_cast<uintptr_t>(store + 1);
  uint8_t* const blocks = reinterpret_cast<uint8_t*>(store + 1) + (Alignment - end % Alignment);
  store->blocks = reinterpret_cast<int16_t*>(blocks);
  store->data = blocks + BlocksSize;
  return store;
}

void Row_Store_Free(RowStore* store) { Arena_Free(store); }

/** Sum of absolute values up to which a block stays within the weight limit, wherever in the first scan positions its
 *  coefficients are. */
static uint16_t Size_Limit(const StripQuant& quant, int32_t positions) {
  int32_t heaviest = 1;
  for (int32_t k = 1; k < positions; ++k) heaviest = std::max<int32_t>(heaviest, quant.weights[zigzagOrder[k]]);
  return static_cast<uint16_t>(StripWeightLimit / heaviest);
}

static void Set_Quant(StripQuant* quant, const int16_t* inverse) {
  for (int32_t i = 0; i < 64; ++i) {
    const int32_t row = i / 8;
    // The second pass multiplies nothing in columns 0 and 4, and the first pass nothing in rows 0 and 4.
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

bool Rows_Available() { return kernels.decodeStrip != nullptr && useMmxIdct == 0; }

/** Gives the hidden-text positions of a strip's luma blocks to the collector; blocks that end before them carry no bit. */
static void Take_Hidden_Bits(const RowStore* store, int32_t macroblocks, WatermarkCollector* collector) {
  for (int32_t b = 0; b < 6 * macroblocks; ++b) {
    if ((store->reach.blocks[b] & 0xFF) <= WatermarkFirst || b % 6 >= 4) continue;
    const int16_t* const block = store->blocks + stripTables.offsets[b];
    int32_t scan[64];
    for (int32_t k = WatermarkFirst; k <= WatermarkLast; ++k) scan[k] = block[stripTables.places[k]];
    Watermark_Take_Block(collector, scan);
  }
}

/** Most bytes of a macroblock: in each block 20 bits for DC, 22 in chroma, and 63 codes of 16 bits with values of 10 bits. */
constexpr size_t MostMacroblockBytes = (4 * 20 + 2 * 22 + 6 * 63 * 26 + 7) / 8;

/** Removes the stuffing of as much data as the strip can need. Data after what the picture needs is never read. */
static void Remove_Stuffing(RowsRun* run) {
  StripReader* const reader = &run->reader;
  const size_t held = (reader->end - reader->position) / 8, needed = MostMacroblockBytes * static_cast<size_t>(run->strip) + 1;
  if (held >= needed || run->stuffed == run->stuffedEnd) return;
  uint8_t* const out = run->codec->rows->data + reader->end / 8;
  reader->end += 8 * kernels.unstuff(&run->stuffed, run->stuffedEnd, out, 2 * needed - held);
}

/** Notes whether the strip begins after the end of the data. A picture narrower than a macroblock has no block to repeat. */
static void Note_Missing_Data(RowsRun* run) {
  if (run->reader.position < run->reader.end || run->strip == 0) return;
  run->missing = run->missing == MissingData::No ? MissingData::FirstStrip : MissingData::LaterStrip;
}

static void Keep_Missing_Scan(RowsRun* run) {
  const RowStore* const store = run->codec->rows;
  for (int32_t k = WatermarkFirst; k <= WatermarkLast; ++k) run->missingScan[k] = store->blocks[stripTables.places[k]];
}

static void Keep_Missing_Samples(RowsRun* run) {
  for (int32_t i = 0; i < 24; ++i) {
    std::memcpy(run->missingSamples + static_cast<ptrdiff_t>(8) * i, run->rows[i < 8 ? i : 8 + i], 8);
  }
}

/** Writes the samples of a strip without data. */
static void Repeat_Missing_Samples(const RowsRun* run) {
  for (int32_t i = 0; i < 32; ++i) {
    const uint8_t* const from = run->missingSamples + static_cast<ptrdiff_t>(8) * (i < 16 ? i % 8 : i - 8);
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
  std::memset(codec->rows->data, 0, StripPadding);  // All that is read of a frame without data.
  run->predictors[0] = run->predictors[1] = run->predictors[2] = 0;
  Watermark_Begin(codec->watermark);
  run->row = run->column = run->strip = 0;
  run->missing = MissingData::No;
}

/** From this many luma samples on the planes don't fit in the caches nearest to the processor. */
static constexpr int64_t LargePicture = 640 * 1024;

/** Prefetches the cache lines of the strip's samples while the strip is decoded: 32 rows at a time are more than the processor
 *  prefetches by itself. */
static void Prefetch_Samples(const RowsRun* run) {
  for (int32_t i = 0; i < 32; ++i) {
    const int32_t width = (i < 16 ? 16 : 8) * run->strip;
    for (int32_t x = 0; x < width; x += 64) __builtin_prefetch(run->rows[i] + x, 1);
  }
}

bool Rows_Decode_Strip(RowsRun* run) {
  const JdecCodec* const codec = run->codec;
  if (run->row == codec->height / 16) return false;
  RowStore* const store = codec->rows;
  if (run->column == 0) Point_To_Row(run);
  run->strip = std::min(codec->width / 16 - run->column, StripMacroblocks);
  Remove_Stuffing(run);
  Note_Missing_Data(run);
  if (run->missing == MissingData::LaterStrip) {
    for (int32_t b = 0; b < 4 * run->strip; ++b) Watermark_Take_Block(run->codec->watermark, run->missingScan);
    return true;
  }
  if (int64_t{codec->width} * codec->height >= LargePicture) Prefetch_Samples(run);
  kernels.decodeStrip(&run->reader, &stripTables, store->blocks, &store->reach, run->strip);
  if (run->missing == MissingData::FirstStrip) Keep_Missing_Scan(run);
  Take_Hidden_Bits(store, run->strip, run->codec->watermark);
  return true;
}

bool Rows_Transform_Strip(RowsRun* run) {
  const JdecCodec* const codec = run->codec;
  RowStore* const store = codec->rows;
  if (run->missing == MissingData::LaterStrip) {
    Repeat_Missing_Samples(run);
  } else {
    kernels.transformStrip(store->blocks, &store->reach, run->strip, &store->luma, &store->chroma, run->predictors, run->rows);
  }
  if (run->missing == MissingData::FirstStrip) Keep_Missing_Samples(run);
  for (int32_t i = 0; i < 32; ++i) run->rows[i] += (i < 16 ? 16 : 8) * run->strip;
  run->column += run->strip;
  if (run->column < codec->width / 16) return false;
  // A luma block right of the last macroblock has no coefficients.
  for (int32_t i = 0; codec->width / 8 % 2 != 0 && i < 16; ++i) std::memset(run->rows[i], 128, 8);
  run->column = 0;
  ++run->row;
  return true;
}

void Rows_Close(RowsRun* run) {
  const JdecCodec* const codec = run->codec;
  // A row of luma blocks below the last macroblock row keeps its coefficients from frame to frame.
  const int32_t last = 2 * run->row;
  if (codec->height / 8 <= last) return;
  uint8_t* const* const rows = codec->planes->yRows + static_cast<ptrdiff_t>(8) * last;
  kernels.idctRow(codec->coefY[last], codec->width / 8, codec->lumaInverse, rangeLimit, rows);
}

void Rows_Decode_Frame(JdecCodec* codec, const RowsTaker& taker) {
  RowsRun run;
  Rows_Open(&run, codec);
  while (Rows_Decode_Strip(&run)) {
    if (Rows_Transform_Strip(&run)) taker.take(taker.user, 8 * (run.row - 1), 8);
  }
  Rows_Close(&run);
  const int32_t done = 8 * run.row, all = (codec->height + 1) / 2;
  if (all > done) taker.take(taker.user, done, all - done);
}
