// The kernels of the encoder, on rows of 640 pixels that stay in the cache, as smooth or as rough as photographs.
#include "bench/levels.h"
#include "bench/random.h"
#include "decode/decoder.h"
#include "pixel/encode_tables.h"

#include <vector>
#include <velarto.h>

namespace {

constexpr int32_t Width = 640;

void Count_Pixels(benchmark::State& state, double pixels) {
  state.counters["pixels"] = benchmark::Counter(pixels, benchmark::Counter::kIsIterationInvariantRate);
}

void To_Planes(benchmark::State& state, ToPlanesKernel kernel) {
  std::vector<uint8_t> pixels(2 * 3 * Width), planes(3 * Width);
  Random random;
  for (uint8_t& byte : pixels) byte = (uint8_t)random.Next();
  uint8_t* const y = planes.data();
  for (auto _ : state) {
    kernel(&pixels[3 * Width], pixels.data(), y, y + Width, y + 2 * Width, y + 2 * Width + Width / 2, Width, 1, 2);
    benchmark::ClobberMemory();
  }
  Count_Pixels(state, 2 * Width);
}

/** Slopes, with noise of that amplitude in every second block. */
void Fill_Rows(uint8_t** rows, int32_t width, int32_t height, int32_t noise) {
  Random random;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const int32_t rough = (x / 8 + y / 8) % 2 ? (int32_t)(random.Next() % (uint32_t)(noise + 1)) : 0;
      rows[y][x] = (uint8_t)((3 * x + 5 * y) / 8 % 200 + rough);
    }
  }
}

void Encode_Row(benchmark::State& state, EncodeRowKernel kernel, int32_t noise) {
  JDEC_Init();
  JdecDecoder* const decoder = JDEC_New(Width, 16);
  const JdecCodec* const codec = decoder->codec;
  const JdecPlanes* const planes = codec->planes;
  Fill_Rows(planes->yRows, Width, 16, noise);
  Fill_Rows(planes->cbRows, Width / 2, 8, noise / 4);
  Fill_Rows(planes->crRows, Width / 2, 8, noise / 4);
  const EncodeSource source = {planes->yRows,      planes->cbRows,       planes->crRows,      codec->lumaForward,
                               codec->lumaInverse, codec->chromaForward, codec->chromaInverse};
  uint8_t* const data = codec->frame->data;
  for (auto _ : state) {
    HuffWriter writer = {data, data + FrameStoreSize, 0, 0, {}};
    kernel(huffEncodeTables, &source, Width / 16, &writer);
    state.counters["bytes"] = (double)(writer.next - data);
    benchmark::ClobberMemory();
  }
  Count_Pixels(state, 16 * Width);
  JDEC_Free(decoder);
  JDEC_Exit();
}

const bool registered[] = {Bench_Levels("To_Planes", &Kernels::toPlanes, To_Planes),
                           Bench_Levels("Encode_Row/smooth", &Kernels::encodeRow,
                                        [](benchmark::State& state, EncodeRowKernel kernel) { Encode_Row(state, kernel, 8); }),
                           Bench_Levels("Encode_Row/rough", &Kernels::encodeRow,
                                        [](benchmark::State& state, EncodeRowKernel kernel) { Encode_Row(state, kernel, 48); })};

}  // namespace
