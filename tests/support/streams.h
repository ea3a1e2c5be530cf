/* Test inputs: files of tests/data, frames in their three wire forms, decoders that free themselves, noise. */
#pragma once

#include "decode/decoder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

/** Starts the library for each test. */
struct LibraryTest : testing::Test {
  LibraryTest() { JDEC_Init(); }
  ~LibraryTest() override { JDEC_Exit(); }
};

struct DecoderFree {
  void operator()(JdecDecoder* decoder) const { JDEC_Free(decoder); }
};
using DecoderPtr = std::unique_ptr<JdecDecoder, DecoderFree>;

inline DecoderPtr Headless_Decoder(int32_t width, int32_t height) {
  DecoderPtr decoder(JDEC_New(width, height));
  if (decoder) JDEC_Draw_Init(decoder.get(), nullptr);
  return decoder;
}

inline Bytes Read_File(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

inline std::string Data_Path(const std::string& name) { return VELARTO_SOURCE_DIR "/tests/data/" + name; }

inline Bytes Joined(const std::vector<Bytes>& parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

/** One picture in each of the wire forms. */
struct TestFrame {
  int32_t width, height, quality;
  Bytes jfif, compact, prefixed;
};

/** Puts a compact head of 12 bytes in front of entropy-coded data. */
inline Bytes Compact_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body) {
  const auto low = [](size_t value) { return (uint8_t)value; };
  const auto high = [](size_t value) { return (uint8_t)(value >> 8); };
  const Bytes head = {0xFF,
                      0xD8,
                      low(body.size()),
                      high(body.size()),
                      low((size_t)width),
                      high((size_t)width),
                      low((size_t)height),
                      high((size_t)height),
                      (uint8_t)quality,
                      0,
                      0xFF,
                      0xD9};
  return Joined({head, body});
}

/** Puts a prefix in front of a compact frame of less than 64 KB. */
inline Bytes Prefixed_Frame(const Bytes& compact, uint8_t flags = 0) {
  return Joined({{0xF6, 0, 0xFF, 0, 0xF9, 0x11, 0xDD, 0x22, flags, 0x33, 0x44, 0x55, 0xC5, 0x66}, compact});
}

/** A file made by cjpeg at that quality, as the three frames that it is. */
inline TestFrame Load_Frame(const std::string& name, int32_t quality) {
  TestFrame frame = {0, 0, quality, Read_File(Data_Path(name)), {}, {}};
  const Bytes& jpeg = frame.jfif;
  frame.height = jpeg[163] << 8 | jpeg[164];
  frame.width = jpeg[165] << 8 | jpeg[166];
  frame.compact = Compact_Frame(frame.width, frame.height, quality, Bytes(jpeg.begin() + 623, jpeg.end() - 2));
  frame.prefixed = Prefixed_Frame(frame.compact);
  return frame;
}

inline int32_t Push(JdecDecoder* decoder, const Bytes& bytes, int32_t* status = nullptr) {
  return JDEC_Receive_Data(decoder, (int32_t)bytes.size(), bytes.data(), status);
}

/** The current picture as a BMP file. */
inline Bytes Picture(JdecDecoder* decoder) {
  uint8_t none = 0;
  Bytes bmp((size_t)JDEC_get_decompressed_bitmap_ex2(decoder, &none, 1));
  JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), (int32_t)bmp.size());
  return bmp;
}

/** What a frame decodes to in a decoder of its own. */
inline Bytes Picture_Of(const TestFrame& frame) {
  const DecoderPtr decoder = Headless_Decoder(frame.width, frame.height);
  EXPECT_EQ(Push(decoder.get(), frame.compact), (int32_t)frame.compact.size());
  return Picture(decoder.get());
}

/** A fixed sequence of numbers. */
struct Noise {
  uint32_t state;
  uint32_t Next() {
    state = state * 1664525 + 1013904223;
    return state >> 8;
  }
  int32_t Between(int32_t least, int32_t most) { return least + (int32_t)(Next() % (uint32_t)(most - least + 1)); }
  Bytes Some(size_t count) {
    Bytes bytes(count);
    for (uint8_t& byte : bytes) byte = (uint8_t)(Next() >> 4);
    return bytes;
  }
};
