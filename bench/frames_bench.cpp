// Whole frames, bytes to 24-bit pixels, beside libjpeg-turbo's fastest path on the same files. Both take turns frame by frame;
// the counter "ratio" is the peer's time divided by ours, median over the turns.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <fstream>
#include <iterator>
#include <string>
#include <turbojpeg.h>
#include <vector>
#include <velarto.h>

namespace {

template <typename Work>
double Seconds(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Decode(benchmark::State& state, const std::string& name) {
  std::ifstream file(VELARTO_SOURCE_DIR "/tests/data/" + name, std::ios::binary);
  std::vector<uint8_t> jpeg((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const int32_t height = jpeg.at(163) << 8 | jpeg.at(164), width = jpeg.at(165) << 8 | jpeg.at(166);
  JDEC_Init();
  JdecDecoder* const decoder = JDEC_New(width, height);
  JDEC_Draw_Init(decoder, nullptr);
  const tjhandle peer = tjInitDecompress();
  std::vector<uint8_t> pixels((size_t)(width * height * 3));
  std::vector<double> ratios;
  bool failed = false;
  for (auto _ : state) {
    const double theirs = Seconds([&] {
      failed |= tjDecompress2(peer, jpeg.data(), jpeg.size(), pixels.data(), width, 0, height, TJPF_BGR,
                              TJFLAG_FASTDCT | TJFLAG_FASTUPSAMPLE) != 0;
    });
    const double ours = Seconds(
        [&] { failed |= JDEC_Receive_Data(decoder, (int32_t)jpeg.size(), jpeg.data(), nullptr) != (int32_t)jpeg.size(); });
    state.SetIterationTime(ours);
    ratios.push_back(theirs / ours);
  }
  if (failed) state.SkipWithError("a frame was not decoded");
  if (!ratios.empty()) {
    std::nth_element(ratios.begin(), ratios.begin() + (ptrdiff_t)(ratios.size() / 2), ratios.end());
    state.counters["ratio"] = ratios[ratios.size() / 2];
  }
  state.counters["pixels"] = benchmark::Counter((double)width * height, benchmark::Counter::kIsIterationInvariantRate);
  tjDestroy(peer);
  JDEC_Free(decoder);
  JDEC_Exit();
}

BENCHMARK_CAPTURE(Decode, q25, "scene-q25.jpg")->UseManualTime();
BENCHMARK_CAPTURE(Decode, q50, "scene-q50.jpg")->UseManualTime();
BENCHMARK_CAPTURE(Decode, q75, "scene-q75.jpg")->UseManualTime();

}  // namespace
