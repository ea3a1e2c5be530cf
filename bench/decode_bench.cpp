// The kernels of decoding, a row of 640 pixels at a time, on data like that of photographs.
#include "bench/levels.h"
#include "decode/decoder.h"
#include "decode/quant.h"
#include "decode/rows.h"
#include "decode/strip_tables.h"
#include "pixel/color_tables.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <vector>
#include <velarto.h>

namespace {

constexpr int32_t Width = 640, BlocksInRow = Width / 8;

/** Blocks as they are at quality 50: a third have only DC, most others a few low frequencies. */
std::vector<int32_t> Natural_Blocks() {
  std::vector<int32_t> blocks(BlocksInRow * 64);
  uint32_t state = 1;
  const auto next = [&state](int32_t range) {
    state = state * 1664525 + 1013904223;
    return (int32_t)((state >> 8) % (uint32_t)(2 * range + 1)) - range;
  };
  for (size_t b = 0; b < BlocksInRow; ++b) {
    blocks[b * 64] = next(50);
    if (b % 3 == 0) continue;
    for (const size_t position : {1, 2, 8, 9, 16, 17, 24}) blocks[b * 64 + position] = next(b % 3 == 1 ? 2 : 6);
  }
  return blocks;
}

void Idct(benchmark::State& state, IdctRowKernel kernel) {
  JDEC_Init();
  const std::vector<int32_t> blocks = Natural_Blocks();
  uint16_t luma[64], chroma[64];
  int16_t table[64];
  Quant_Build(50, luma, chroma);
  Quant_Build_Inverse(table, luma, 11);
  std::vector<uint8_t> samples(8 * Width);
  uint8_t* rows[8];
  for (size_t r = 0; r < 8; ++r) rows[r] = &samples[r * Width];
  for (auto _ : state) {
    kernel(blocks.data(), BlocksInRow, table, rangeLimit, rows);
    benchmark::ClobberMemory();
  }
  state.counters["blocks"] = benchmark::Counter(BlocksInRow, benchmark::Counter::kIsIterationInvariantRate);
  JDEC_Exit();
}

/** The entropy-coded data of a scene of 320x240 at quality 50. */
struct CodedScene {
  std::vector<uint8_t> jpeg, data;
  size_t count = 0;
  static constexpr int32_t StripsInScene = 300 / 15, StripOfScene = 15;
  CodedScene() {
    std::ifstream file(VELARTO_SOURCE_DIR "/tests/data/scene-q50.jpg", std::ios::binary);
    jpeg.assign(std::istreambuf_iterator<char>(file), {});
    data.resize(jpeg.size() + 2 * StripPadding);
  }
  void Unstuff(UnstuffKernel kernel) {
    const uint8_t* stuffed = &jpeg.at(623);
    count = kernel(&stuffed, stuffed + jpeg.size() - 625, data.data(), jpeg.size());
  }
};

void Unstuff(benchmark::State& state, UnstuffKernel kernel) {
  CodedScene scene;
  for (auto _ : state) scene.Unstuff(kernel);
  state.counters["bytes"] = benchmark::Counter((double)scene.count, benchmark::Counter::kIsIterationInvariantRate);
}

/** Decodes all strips of the scene into the same blocks. */
void Decode_Strips(benchmark::State& state, DecodeStripKernel kernel) {
  JDEC_Init();
  CodedScene scene;
  scene.Unstuff(kernels.unstuff);
  std::vector<int16_t> blocks(StripMacroblocks * StripMacroblockSize);
  StripReach reach;
  for (auto _ : state) {
    StripReader reader = {scene.data.data(), 0, 8 * scene.count};
    for (int32_t i = 0; i < CodedScene::StripsInScene; ++i)
      kernel(&reader, &stripTables, blocks.data(), &reach, CodedScene::StripOfScene);
    benchmark::ClobberMemory();
  }
  state.counters["blocks"] = benchmark::Counter(6 * 300, benchmark::Counter::kIsIterationInvariantRate);
  JDEC_Exit();
}

/** The scene's fourth strip. The time includes copying its coefficients, because the kernel zeroes them. */
void Transform_Strip(benchmark::State& state, TransformStripKernel kernel) {
  JDEC_Init();
  CodedScene scene;
  scene.Unstuff(kernels.unstuff);
  JdecDecoder* const decoder = JDEC_New(320, 240);
  const RowStore* const store = decoder->codec->rows;
  std::vector<int16_t> blocks(StripMacroblocks * StripMacroblockSize);
  StripReach reach;
  StripReader reader = {scene.data.data(), 0, 8 * scene.count};
  for (int32_t i = 0; i < 4; ++i) {
    std::fill(blocks.begin(), blocks.end(), int16_t{0});
    kernels.decodeStrip(&reader, &stripTables, blocks.data(), &reach, CodedScene::StripOfScene);
  }
  std::vector<uint8_t> samples(32 * Width);
  uint8_t* rows[32];
  for (size_t r = 0; r < 32; ++r) rows[r] = &samples[r * Width];
  int32_t predictors[3] = {0, 0, 0};
  for (auto _ : state) {
    std::copy(blocks.begin(), blocks.end(), store->blocks);
    kernel(store->blocks, &reach, CodedScene::StripOfScene, &store->luma, &store->chroma, predictors, rows);
    benchmark::ClobberMemory();
  }
  state.counters["blocks"] = benchmark::Counter(6 * CodedScene::StripOfScene, benchmark::Counter::kIsIterationInvariantRate);
  JDEC_Free(decoder);
  JDEC_Exit();
}

const bool registered[] = {
    Bench_Levels("Unstuff", &Kernels::unstuff, Unstuff), Bench_Levels("Decode_Strips", &Kernels::decodeStrip, Decode_Strips),
    Bench_Levels("Transform_Strip", &Kernels::transformStrip, Transform_Strip), Bench_Levels("Idct", &Kernels::idctRow, Idct),
    Bench_Levels("Idct_Packed", &Kernels::idctRowPacked, Idct)};

}  // namespace
