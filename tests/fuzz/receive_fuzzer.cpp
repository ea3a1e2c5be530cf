// Any bytes through both receive paths. The first two bytes of the input choose path, chunk sizes and kernels, the rest is the
// stream.
#include "kernels/cpu.h"
#include "velarto.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <vector>

namespace {

/** Pixels that the compact heads of an input announce. */
uint64_t Announced_Pixels(const uint8_t* data, size_t size) {
  uint64_t pixels = 0;
  for (size_t i = 0; i + 12 <= size; ++i, ++data) {
    if (data[0] != 0xFF || data[1] != 0xD8 || data[10] != 0xFF || data[11] != 0xD9) continue;
    pixels += (uint64_t)(data[4] | data[5] << 8) * (uint64_t)(data[6] | data[7] << 8);
  }
  return pixels;
}

/** Decodes the input with kernels of that mask and gives the last picture. */
std::vector<uint8_t> Run(uint32_t mask, const uint8_t* data, size_t size) {
  kernels = Kernels_Select(mask);
  std::vector<uint8_t> bmp;
  JdecDecoder* const decoder = JDEC_New(32, 32);
  if (!decoder) return bmp;
  if (data[0] & 1) JDEC_Draw_Init(decoder, nullptr);
  uint32_t draw = data[1];
  uint8_t out[2048];
  for (size_t at = 2, count; at < size; at += count) {
    draw = draw * 1664525 + 1013904223;
    count = std::min(size - at, 1 + (draw >> 8) % (size_t{1} << (data[0] >> 4)));
    int32_t status = data[0] & 4;
    if (data[0] & 2) {
      JDEC_Receive_Data_2(decoder, data + at, (uint32_t)count);
      while (JDEC_Check_Decode_Frame(decoder, 1, out, sizeof out, nullptr, 0, 1, &status) == 1) continue;
    } else {
      JDEC_Receive_Data(decoder, (int32_t)count, data + at, &status);
    }
  }
  if (data[0] & 1) {
    bmp.resize((size_t)JDEC_get_decompressed_bitmap_ex2(decoder, out, 1));
    JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), (int32_t)bmp.size());
  }
  JDEC_Free(decoder);
  return bmp;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3 || Announced_Pixels(data, size) > 32'000'000) return 0;  // More would outlast a fuzzer's patience.
  static const int32_t started = JDEC_Init();
  if (!started) return 0;
  const uint32_t mask = kernelLevels[data[1] % std::size(kernelLevels)].mask & Cpu_Levels();
  const std::vector<uint8_t> picture = Run(mask, data, size);
  if (data[0] & 8 && picture != Run(KernelPlain, data, size)) std::abort();  // The levels agree bit for bit.
  return 0;
}
