// Any bytes through both receive paths. The first two bytes of the input choose path and chunk sizes, the rest is the stream.
#include "velarto.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

/** Pixels that an input may announce in compact heads, so that none takes longer than a fuzzer waits. */
constexpr uint64_t MostPixels = 32'000'000;

uint64_t Announced_Pixels(const uint8_t* data, size_t size) {
  uint64_t pixels = 0;
  for (size_t i = 0; i + 12 <= size; ++i) {
    if (data[i] != 0xFF || data[i + 1] != 0xD8 || data[i + 10] != 0xFF || data[i + 11] != 0xD9) continue;
    pixels += (uint64_t)(data[i + 4] | data[i + 5] << 8) * (uint64_t)(data[i + 6] | data[i + 7] << 8);
  }
  return pixels;
}

/** Reads the picture in both forms, each byte of it. */
uint32_t Read_Picture(JdecDecoder* decoder) {
  uint8_t none = 0;
  std::vector<uint8_t> bmp((size_t)JDEC_get_decompressed_bitmap_ex2(decoder, &none, 1));
  JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), (int32_t)bmp.size());
  const uint8_t* const raster = JDEC_get_decompressed_bitmap(decoder);
  uint32_t sum = 0;
  for (size_t i = 54; i < bmp.size(); ++i) sum = sum * 31 + bmp[i] + raster[i - 54];
  return sum;
}

void Poll(JdecDecoder* decoder, std::vector<uint8_t>* out, int32_t capacity) {
  uint32_t length = 0;
  int32_t status = 1;
  while (JDEC_Check_Decode_Frame(decoder, 1, out->data(), capacity, &length, 0, 1, &status) == 1) continue;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3 || Announced_Pixels(data, size) > MostPixels) return 0;
  static const int32_t started = JDEC_Init();
  JdecDecoder* const decoder = JDEC_New(32, 32);
  if (!started || !decoder) return 0;
  if (data[0] & 1) JDEC_Draw_Init(decoder, nullptr);
  const bool polling = data[0] & 2;
  const size_t largest = size_t{1} << (data[0] >> 4);
  uint32_t draw = data[1];
  std::vector<uint8_t> out(2048);
  for (size_t at = 2; at < size;) {
    draw = draw * 1664525 + 1013904223;
    const size_t count = std::min(size - at, 1 + (draw >> 8) % largest);
    int32_t status = data[0] & 4;
    if (polling) {
      JDEC_Receive_Data_2(decoder, data + at, (uint32_t)count);
      Poll(decoder, &out, (int32_t)out.size());
    } else {
      JDEC_Receive_Data(decoder, (int32_t)count, data + at, &status);
    }
    at += count;
  }
  if (data[0] & 1) Read_Picture(decoder);
  JDEC_Free(decoder);
  return 0;
}
