// Any bytes through both receive paths. The first two bytes of the input choose path and chunk sizes, the rest is the stream.
#include "velarto.h"

#include <algorithm>
#include <cstddef>
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3 || Announced_Pixels(data, size) > 32'000'000) return 0;  // More would outlast a fuzzer's patience.
  static const int32_t started = JDEC_Init();
  JdecDecoder* const decoder = JDEC_New(32, 32);
  if (!started || !decoder) return 0;
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
    std::vector<uint8_t> bmp((size_t)JDEC_get_decompressed_bitmap_ex2(decoder, out, 1));
    JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), (int32_t)bmp.size());
  }
  JDEC_Free(decoder);
  return 0;
}
