/* Test inputs: files of tests/data, frames in their three wire forms, noise, pictures and codecs that free themselves. */
#pragma once

#include "decode/codec.h"
#include "decode/global_tables.h"
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
using RasterPtr = std::unique_ptr<JdecRaster, Releaser<Arena_Free>>;
using PlanesPtr = std::unique_ptr<JdecPlanes, Releaser<Arena_Free>>;

inline void Codec_And_Picture_Free(JdecCodec* codec) {
  Arena_Free(codec->raster);
  Arena_Free(codec->planes);
  Codec_Free(codec);
}
using CodecPtr = std::unique_ptr<JdecCodec, Releaser<Codec_And_Picture_Free>>;

/** A codec with planes and a raster of 24 bits. */
inline CodecPtr Whole_Codec(int32_t width, int32_t height) {
  CodecPtr codec(Codec_New(width, height));
  codec->planes = Planes_New(width, height, 4, 1);
  codec->raster = Raster_New(width, height, 24);
  Planes_Darken(codec->planes);
  Codec_Set_Quality(codec.get(), 50);
  return codec;
}

inline std::string Data_Path(const std::string& name) { return VELARTO_SOURCE_DIR "/tests/data/" + name; }

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

/** Entropy-coded data without its stuffing. A run of FF counts as one; FF 00 is FF, another byte after FF is that byte, and FF at
 *  the end is FF. */
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

/** A copy in memory that ends with the bytes, so that a sanitizer sees a read past them. */
inline std::unique_ptr<uint8_t[]> Exact_Copy(const Bytes& bytes) {
  std::unique_ptr<uint8_t[]> exact(new uint8_t[bytes.size()]);
  std::copy(bytes.begin(), bytes.end(), exact.get());
  return exact;
}

inline Bytes Compact_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body) {
  const auto word = [](auto value) { return Bytes{(uint8_t)value, (uint8_t)(value >> 8)}; };
  return Joined({{0xFF, 0xD8}, word(body.size()), word(width), word(height), word(quality), {0xFF, 0xD9}, body});
}

/** Puts a prefix before a compact frame of less than 64 KB. */
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

/** A file made by cjpeg at that quality, in the three wire forms. */
inline TestFrame Load_Frame(const std::string& name, int32_t quality) {
  const Bytes jpeg = Read_File(Data_Path(name));
  const int32_t height = jpeg[163] << 8 | jpeg[164], width = jpeg[165] << 8 | jpeg[166];
  const Bytes compact = Compact_Frame(width, height, quality, Bytes(jpeg.begin() + 623, jpeg.end() - 2));
  return {width, height, quality, jpeg, compact, Prefixed_Frame(compact)};
}

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

/** Sets up the codec's tables for each test. */
struct CodecTest : testing::Test {
  CodecTest() { Init_Global_Tables(); }
  ~CodecTest() override { Free_Global_Tables(); }
};
