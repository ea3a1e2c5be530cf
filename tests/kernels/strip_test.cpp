// Strips at every vector level: the transform against the plain one, block by block; stuffing.
#include "decode/huffman_codes.h"
#include "decode/rows.h"
#include "decode/strip_tables.h"
#include "pixel/color_tables.h"
#include "support/inputs.h"
#include "support/level_test.h"

#include <algorithm>

namespace {

constexpr int32_t Pitch = 16 * StripMacroblocks + 32;

/** 16 rows of luma, 8 of Cb, 8 of Cr, with watched bytes at either end. */
struct SampleRows {
  Bytes bytes = Bytes(32 * Pitch, 0xA5);
  uint8_t* rows[32];
  SampleRows() {
    for (int32_t i = 0; i < 32; ++i) rows[i] = &bytes[(size_t)i * Pitch + 16];
  }
};

struct StripKernel : LevelTest<CodecTest> {
  CodecPtr owner = Whole_Codec(16, 16);
  JdecCodec* codec = owner.get();
  RowStore* store = codec->rows;
  Noise noise{7};

  /** A block that a stream can hold, in scan order: flat, quarter, seven diagonals, all; small values, or a few large ones. */
  std::array<int32_t, 64> Any_Block(const StripQuant& quant) {
    std::array<int32_t, 64> scan{};
    const int32_t shape = (int32_t)noise.Next() % 8,
                  limits[8] = {1, StripNarrow, StripNarrow, StripMiddle, StripMiddle, 1, 64, 64};
    scan[0] = noise.Between(-2047, 2047);
    for (int32_t n = noise.Between(1, limits[shape]); n > 0 && limits[shape] > 1; --n) {
      scan[(size_t)noise.Between(1, limits[shape] - 1)] = shape == 7 ? noise.Between(-1023, 1023) : noise.Between(-8, 8);
    }
    // Just below and above the limit for 16 bits, with the signs that add up in one place.
    const int32_t row = noise.Between(1, 7), column = noise.Between(0, 7);
    for (size_t k = 1; shape == 6 && k < 64; ++k) {
      const int32_t at = zigzagOrder[k], weight = std::max<int32_t>(quant.weights[at], 1);
      scan[k] = at / 8 % 2 == row % 2 && at % 8 % 2 == column % 2 ? std::min(32700 / 16 / weight + noise.Between(0, 1), 1023) : 0;
      if ((at / 8 * row + at % 8 * column) % 16 >= 8) scan[k] = -scan[k];
    }
    // The same with one coefficient: only the gain of its row says whether it fits.
    const int32_t alone = noise.Between(1, 63), most = 32700 / std::max<int32_t>(quant.weights[zigzagOrder[alone]], 1);
    if (shape == 5) scan[(size_t)alone] = std::min(most + noise.Between(0, 1), 1023) * (noise.Between(0, 1) * 2 - 1);
    return scan;
  }
};
TEST_AT_VECTOR_LEVELS(StripKernel);

TEST_P(StripKernel, TransformsAsThePlainBlocks) {
  for (int round = 0; round < 3000; ++round) {
    Codec_Set_Quality(codec, noise.Between(0, 101));
    const int32_t count = noise.Between(1, StripMacroblocks);
    int32_t predictors[3] = {noise.Between(-4, 4) << 28, noise.Between(-999, 999), 0};
    int32_t sums[3] = {predictors[0], predictors[1], 0};
    SampleRows expected, got;
    StripReach reach;
    for (int32_t b = 0; b < 6 * count; ++b) {
      const int32_t component = b % 6 < 4 ? 0 : b % 6 - 3, isLuma = component == 0;
      const std::array<int32_t, 64> scan = Any_Block(isLuma ? store->luma : store->chroma);
      int32_t block[64], sizes = 0, used = 1;
      for (int32_t k = 0; k < 64; ++k) {
        block[zigzagOrder[k]] = scan[(size_t)k];
        store->blocks[stripTables.offsets[b] + stripTables.places[k]] = (int16_t)scan[(size_t)k];
        if (scan[(size_t)k] != 0) used = k + 1;
        if (k > 0) sizes += std::abs(scan[(size_t)k]);
      }
      block[0] = sums[component] += scan[0];
      reach.blocks[b] = (StripProgress)(sizes << StripSizeShift | noise.Between(used, std::min(used + 2, 64)));
      uint8_t* places[8];
      for (int32_t i = 0; i < 8; ++i) {
        places[i] =
            isLuma ? expected.rows[b % 6 / 2 * 8 + i] + b / 6 * 16 + b % 2 * 8 : expected.rows[8 + 8 * component + i] + b / 6 * 8;
      }
      Idct_Row_Plain(block, 1, isLuma ? codec->lumaInverse : codec->chromaInverse, rangeLimit, places);
    }
    record.transformStrip(store->blocks, &reach, count, &store->luma, &store->chroma, predictors, got.rows);
    ASSERT_EQ(got.bytes, expected.bytes) << "round " << round << " quality " << codec->quality;
    ASSERT_TRUE(std::equal(predictors, predictors + 3, sums));
    int16_t* const end = store->blocks + StripMacroblocks * StripMacroblockSize;
    ASSERT_TRUE(std::all_of(store->blocks, end, [](int16_t word) { return word == 0; }));
  }
}

TEST_P(StripKernel, StuffingGoesAndZerosFollow) {
  for (size_t count = 0; count < 400; ++count) {
    Bytes raw = noise.Some(count);
    const uint32_t one = count % 4 == 3 ? 32 : (uint32_t)count % 4 * 20 + 2;  // One in so many bytes is FF; of 32, all but one.
    for (uint8_t& octet : raw) octet = (noise.Next() % one == 0) != (one == 32) ? 0xFF : noise.Next() % 8 == 0 ? 0 : octet;
    Bytes expected = Without_Stuffing(raw);
    const auto exact = Exact_Copy(raw);
    Bytes out(count + 2 * StripPadding, 0xA5);
    const uint8_t *from = exact.get(), *const end = from + count;
    size_t made = 0;
    do {
      const auto wanted = (size_t)noise.Between(1, 300);
      const size_t piece = record.unstuff(&from, end, out.data() + made, wanted);
      ASSERT_TRUE(from == end || (piece >= wanted && piece < wanted + 32)) << count;
      made += piece;
    } while (from != end);
    ASSERT_EQ(made, expected.size()) << count;
    expected.resize(expected.size() + StripPadding);
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), out.begin())) << count;
  }
}

}  // namespace
