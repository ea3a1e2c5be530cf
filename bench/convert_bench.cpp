// Converters and dithering at every level: a row of 640 pixels in the cache, and whole rasters written through or past the cache.
#include "kernels/cpu.h"
#include "pixel/arena.h"
#include "pixel/color_tables.h"
#include "pixel/pictures.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <string>
#include <vector>
#include <velarto.h>

namespace {

constexpr int32_t Width = 640;

void Count_Pixels(benchmark::State& state, double pixels) {
  state.counters["pixels"] = benchmark::Counter(pixels, benchmark::Counter::kIsIterationInvariantRate);
}

std::vector<uint8_t> Samples(size_t count) {
  std::vector<uint8_t> samples(count);
  for (size_t i = 0; i < count; ++i) samples[i] = (uint8_t)(i * 37 >> 3);
  return samples;
}

void Convert(benchmark::State& state, ConvertRowsKernel kernel) {
  JDEC_Init();
  const std::vector<uint8_t> planes = Samples(3 * Width);
  std::vector<uint8_t> out(2 * Width * 4);
  const ColorTables tables = {rangeLimit, yccRgbTable};
  const uint8_t* const chroma = &planes[2 * Width];
  for (auto _ : state) {
    kernel(&tables, &planes[0], &planes[Width], chroma, chroma + Width / 2, &out[0], &out[Width * 4], Width / 2);
    benchmark::ClobberMemory();
  }
  Count_Pixels(state, 2 * Width);
  JDEC_Exit();
}

void Dither(benchmark::State& state, DitherRowKernel kernel) {
  const std::vector<uint8_t> planes = Samples(2 * Width), quantisers(272);
  const DitherTables tables = {quantisers.data(), quantisers.data(), quantisers.data()};
  const uint8_t matrixRow[4] = {0, 8, 2, 10};
  std::vector<uint8_t> out(Width);
  for (auto _ : state) {
    kernel(&tables, &planes[0], &planes[Width], &planes[Width / 2 * 3], matrixRow, out.data(), Width / 2);
    benchmark::ClobberMemory();
  }
  Count_Pixels(state, Width);
}

/** A raster of 24 bits, from rows of planes that are in the cache, as when the decoder converts right after the transform. `read`
 *  adds the time to read the whole raster afterwards. */
void Whole_Raster(benchmark::State& state, ConvertRowsKernel kernel, void (*endStream)(), bool read) {
  JDEC_Init();
  const auto width = (int32_t)state.range(0), height = (int32_t)state.range(1);
  JdecRaster* const raster = Raster_New(width, height, 24);
  const std::vector<uint8_t> planes = Samples((size_t)width * 3);
  std::vector<uint8_t> row((size_t)raster->pitch);
  const ColorTables tables = {rangeLimit, yccRgbTable};
  const uint8_t *const upper = &planes[0], *const chroma = upper + 2 * width;
  for (auto _ : state) {
    for (int32_t y = 0; y < height; y += 2) {
      kernel(&tables, upper, upper + width, chroma, chroma + width / 2, raster->rows[y], raster->rows[y + 1], width / 2);
    }
    endStream();
    for (int32_t y = 0; read && y < height; ++y) {
      memcpy(row.data(), raster->rows[y], row.size());
      benchmark::ClobberMemory();
    }
  }
  Count_Pixels(state, (double)width * height);
  Arena_Free(raster);
  JDEC_Exit();
}

[[maybe_unused]] const bool registered = [] {
  for (const auto& [name, mask] : kernelLevels) {
    if (mask & ~Cpu_Levels()) continue;
    const Kernels level = Kernels_Select(mask);
    const auto add = [name = std::string(name)](const char* subject, auto bench, auto... kernels) {
      return benchmark::RegisterBenchmark((std::string(subject) + name).c_str(), bench, kernels...);
    };
    add("Convert/rgb24_", Convert, level.toRgb24);
    add("Convert/rgb32_", Convert, level.toRgb32);
    add("Convert/rgb565_", Convert, level.toRgb565);
    add("Convert/rgb555_", Convert, level.toRgb555);
    add("Dither/", Dither, level.ditherRow);
    if (mask == KernelPlain) continue;
    for (const bool read : {false, true}) {
      const std::string subject = read ? "Raster/read_" : "Raster/";
      for (const auto& [kind, kernel] : {std::pair{"cached_", level.toRgb24}, {"streamed_", level.toRgb24Stream}}) {
        auto* const bench = add((subject + kind).c_str(), Whole_Raster, kernel, level.endStream, read);
        bench->Args({640, 480})->Args({1920, 1072})->Args({2560, 1440})->Args({3840, 2160})->Args({5120, 2880});
      }
    }
  }
  return true;
}();

}  // namespace
