/* What the fuzzers read from an input: numbers, chunks and frames. After its end all is 0. */
#pragma once

#include "decode/frame_header.h"
#include "decode/quant.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

using Bytes = std::vector<uint8_t>;

struct Input {
  const uint8_t* data;
  size_t left;

  uint8_t Byte() { return left ? (--left, *data++) : uint8_t{0}; }
  int32_t Word() {
    const int32_t low = Byte();
    return low | Byte() << 8;
  }
  /** Any number: most often a small one, sometimes an extreme. */
  int32_t Number() {
    const uint8_t kind = Byte();
    if (kind < 128) return kind;
    if (kind < 192) return (int16_t)Word();
    constexpr int32_t extremes[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, -1, 65535, 65536, 640};
    return kind < 250 ? extremes[kind % 8] : (int32_t)((uint32_t)Word() | (uint32_t)Word() << 16);
  }
  int32_t Between(int32_t least, int32_t most) { return least + Word() % (most - least + 1); }
  Bytes Some(size_t count) {
    count = std::min(count, left);
    data += count;
    left -= count;
    return Bytes(data - count, data);
  }
};

/** Pixels that the headers in a stream announce. Large pictures would take most of a fuzzer's time. */
inline uint64_t Announced_Pixels(const uint8_t* data, size_t size) {
  uint64_t pixels = 0;
  const auto word = [&](size_t at, int low) { return (uint64_t)(data[at + low] | data[at + 1 - low] << 8); };
  for (size_t i = 0; i + 12 <= size; ++i) {
    if (data[i] != 0xFF) continue;
    if (data[i + 1] == 0xD8 && data[i + 10] == 0xFF && data[i + 11] == 0xD9) pixels += word(i + 4, 0) * word(i + 6, 0);
    if (data[i + 1] == 0xC0) pixels += word(i + 5, 1) * word(i + 7, 1);
  }
  return pixels;
}
inline constexpr uint64_t MostAnnounced = 6'000;

/** A frame around a body of less than 64 KB. */
inline Bytes Make_Frame(FrameForm form, int32_t width, int32_t height, int32_t quality, const Bytes& body) {
  Bytes frame;
  if (form == FrameForm::Jfif) {
    uint16_t luma[64], chroma[64];
    Quant_Build(quality, luma, chroma);
    frame.resize(JfifHeaderSize);
    JfifCursor cursor = {frame.data(), 0};
    JFIF_Write_Header(&cursor, width, height, luma, chroma);
  } else {
    if (form == FrameForm::Prefixed) frame = {0xF6, 0, 0xFF, 0, 0xF9, 0x11, 0xDD, 0x22, 0, 0x33, 0x44, 0x55, 0xC5, 0x66};
    frame.resize(frame.size() + CompactHeaderSize);
    Compact_Put_Header(&frame[frame.size() - CompactHeaderSize], (int32_t)body.size(), width, height, quality);
  }
  frame.insert(frame.end(), body.begin(), body.end());
  if (form == FrameForm::Jfif) frame.insert(frame.end(), {0xFF, 0xD9});
  return frame;
}

/** A frame from the next bytes: form, size of at most 48 by 48, quality, length, body. */
inline Bytes Next_Frame(Input* input) {
  const uint8_t form = input->Byte();
  const int32_t width = input->Byte() % 48 + 1, height = input->Byte() % 48 + 1, quality = input->Byte();
  return Make_Frame((FrameForm)(form % 3), width, height, quality, input->Some((size_t)input->Word() % 2048));
}
