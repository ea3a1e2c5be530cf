// Kernels of decoding alone, a picture's row of 640 pixels at a time, on data as photographs bring it.
#include "bench/levels.h"
#include "decode/quant.h"
#include "pixel/color_tables.h"

#include <vector>
#include <velarto.h>

namespace {

constexpr int32_t Width = 640, BlocksInRow = Width / 8;

/** Blocks as they are at quality 50: a third have DC alone, most of the rest a few low frequencies. */
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

const bool registered[] = {Bench_Levels("Idct", &Kernels::idctRow, Idct),
                           Bench_Levels("Idct_Packed", &Kernels::idctRowPacked, Idct)};

}  // namespace
