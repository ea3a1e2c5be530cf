/* Test inputs: files of tests/data, frames in their three wire forms, decoders that free themselves, noise. */
#pragma once

#include "decode/decoder.h"
#include "pixel/arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

template <auto release>
struct Releaser {
  void operator()(auto* resource) const { release(resource); }
};
using DecoderPtr = std::unique_ptr<JdecDecoder, Releaser<JDEC_Free>>;
using RasterPtr = std::unique_ptr<JdecRaster, Releaser<Arena_Free>>;
using PlanesPtr = std::unique_ptr<JdecPlanes, Releaser<Arena_Free>>;

inline DecoderPtr Shown_Decoder(HWND window, int32_t width, int32_t height) {
  DecoderPtr decoder(JDEC_New(width, height));
  if (decoder) JDEC_Draw_Init(decoder.get(), window);
  return decoder;
}

inline DecoderPtr Headless_Decoder(int32_t width, int32_t height) { return Shown_Decoder(nullptr, width, height); }

inline std::string Data_Path(const std::string& name) { return VELARTO_SOURCE_DIR "/tests/data/" + name; }

/** A path for a file of this test alone, whatever runs beside it. */
inline std::string Scratch_Path(const std::string& name) {
  return testing::TempDir() + "velarto-" + std::to_string(GetCurrentThreadId()) + "-" + name;
}

inline Bytes Read_File(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

inline Bytes Joined(const std::vector<Bytes>& parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

/** Coded data as a decoder reads it: of FF 00 stays FF, of FF and another byte that byte, 0 at the end. */
inline Bytes Without_Stuffing(const Bytes& raw) {
  Bytes data;
  for (size_t i = 0; i < raw.size(); ++i) {
    const bool escaped = raw[i] == 0xFF;
    while (i < raw.size() && raw[i] == 0xFF) ++i;
    const uint8_t octet = i < raw.size() ? raw[i] : 0;
    data.push_back(escaped && octet == 0 ? 0xFF : octet);
  }
  return data;
}

/** Memory that ends where the bytes do, so that a sanitizer sees one too many. */
inline std::unique_ptr<uint8_t[]> Exact_Copy(const Bytes& bytes) {
  std::unique_ptr<uint8_t[]> exact(new uint8_t[bytes.size()]);
  std::copy(bytes.begin(), bytes.end(), exact.get());
  return exact;
}

inline Bytes Compact_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body) {
  const auto word = [](auto value) { return Bytes{(uint8_t)value, (uint8_t)(value >> 8)}; };
  return Joined({{0xFF, 0xD8}, word(body.size()), word(width), word(height), word(quality), {0xFF, 0xD9}, body});
}

/** Puts a prefix in front of a compact frame of less than 64 KB. */
inline Bytes Prefixed_Frame(const Bytes& compact, uint8_t flags = 0) {
  return Joined({{0xF6, 0, 0xFF, 0, 0xF9, 0x11, 0xDD, 0x22, flags, 0x33, 0x44, 0x55, 0xC5, 0x66}, compact});
}

enum : size_t { Jfif, Compact, Prefixed };

/** One picture in each of the wire forms. */
struct TestFrame {
  int32_t width, height, quality;
  Bytes jfif, compact, prefixed;
  const Bytes& In_Form(size_t form) const { return form == Jfif ? jfif : form == Compact ? compact : prefixed; }
};

/** A file made by cjpeg at that quality, as the three frames that it is. */
inline TestFrame Load_Frame(const std::string& name, int32_t quality) {
  const Bytes jpeg = Read_File(Data_Path(name));
  const int32_t height = jpeg[163] << 8 | jpeg[164], width = jpeg[165] << 8 | jpeg[166];
  const Bytes compact = Compact_Frame(width, height, quality, Bytes(jpeg.begin() + 623, jpeg.end() - 2));
  return {width, height, quality, jpeg, compact, Prefixed_Frame(compact)};
}

inline int32_t Push(JdecDecoder* decoder, const Bytes& bytes, int32_t* status = nullptr) {
  return JDEC_Receive_Data(decoder, (int32_t)bytes.size(), bytes.data(), status);
}

/** Gives bytes to the polling path. */
inline int32_t Store(JdecDecoder* decoder, const Bytes& bytes) {
  return JDEC_Receive_Data_2(decoder, bytes.data(), (uint32_t)bytes.size());
}

inline int32_t Poll(JdecDecoder* decoder, Bytes* frame = nullptr) {
  Bytes out(8192);
  uint32_t length = 0;
  const int32_t result = JDEC_Check_Decode_Frame(decoder, 1, out.data(), (int32_t)out.size(), &length, 0, 1, nullptr);
  if (frame) frame->assign(out.begin(), out.begin() + length);
  return result;
}

/** A picture of that decoder's size as a frame; empty when it can't be made. */
inline Bytes Compressed(JdecDecoder* encoder, int32_t quality, const Bytes& pixels, int32_t withMarkers, int32_t doubleRows = 0) {
  Bytes out(FrameStoreSize);
  out.resize(
      (size_t)JDEC_Compress_RGB888(encoder, quality, pixels.data(), 0, out.data(), FrameStoreSize, withMarkers, doubleRows));
  return out;
}

/** The current picture as a BMP file. */
inline Bytes Current_Picture(JdecDecoder* decoder) {
  uint8_t none = 0;
  Bytes bmp((size_t)JDEC_get_decompressed_bitmap_ex2(decoder, &none, 1));
  JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), (int32_t)bmp.size());
  return bmp;
}

/** What a frame decodes to in a decoder of its own. */
inline Bytes Picture_Of(const TestFrame& frame) {
  const DecoderPtr decoder = Headless_Decoder(frame.width, frame.height);
  EXPECT_EQ(Push(decoder.get(), frame.compact), (int32_t)frame.compact.size());
  return Current_Picture(decoder.get());
}

/** Starts the library for each test. */
struct LibraryTest : testing::Test {
  LibraryTest() { JDEC_Init(); }
  ~LibraryTest() override { JDEC_Exit(); }
};

struct FramesTest : LibraryTest {
  const TestFrame small = Load_Frame("tile-48x48-q50.jpg", 50), middle = Load_Frame("tile-64x48-q75.jpg", 75),
                  large = Load_Frame("tile-96x64-q40.jpg", 40);
};

/** A fixed sequence of numbers. */
struct Noise {
  uint32_t state;
  uint32_t Next() { return (state = state * 1664525 + 1013904223) >> 8; }
  int32_t Between(int32_t least, int32_t most) { return least + (int32_t)(Next() % (uint32_t)(most - least + 1)); }
  Bytes Some(size_t count) {
    Bytes bytes(count);
    for (uint8_t& octet : bytes) octet = (uint8_t)(Next() >> 4);
    return bytes;
  }
};
