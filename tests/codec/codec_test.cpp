// The codec without a decoder or a window, as in a program that links velarto_codec alone, on each processor that it is built
// for.
#include "decode/framing.h"
#include "decode/picture_decode.h"
#include "pixel/compress.h"
#include "support/inputs.h"
#include "support/levels.h"

namespace {

/** FNV-1a, continued from a hash. */
uint64_t Hash(uint64_t hash, const uint8_t* bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) hash = (hash ^ bytes[i]) * 0x100000001B3;
  return hash;
}

uint64_t Hash_Of_Picture(uint64_t hash, const JdecRaster& raster) {
  return Hash(hash, raster.rows[raster.height - 1], (size_t)raster.pitch * (size_t)raster.height);
}

/** Decodes the next frame of the stream. Gives the bytes up to its end; -1 if there is none. */
int32_t Decode_Next(CodecPtr* codec, const uint8_t* stream, int32_t count) {
  int32_t isJfif = 0, hasPrefix = 0;
  const int32_t start = Frame_Sync(stream, count, &isJfif, &hasPrefix);
  if (start < 0) return -1;
  stream += start;
  count -= start;
  const FrameForm form = isJfif ? FrameForm::Jfif : hasPrefix ? FrameForm::Prefixed : FrameForm::Compact;
  const auto length = isJfif      ? Find_EOI(stream, count) + 2
                      : hasPrefix ? (int32_t)Prefixed_Length(stream)
                                  : Compact_Length(stream);
  FrameHeader header = {};
  if (length > count || !Read_Frame_Header(stream, length, form, &header)) return -1;
  if (!*codec || (*codec)->width != header.width || (*codec)->height != header.height) {
    *codec = Whole_Codec(header.width, header.height);
  }
  JdecFrameBuffer* const frame = (*codec)->frame;
  std::copy_n(stream, length, frame->data);
  frame->length = length;
  frame->position = header.dataOffset;
  Codec_Set_Quality(codec->get(), header.quality);
  Decode_Picture(codec->get(), {(*codec)->raster, PixelRgb24, 0, RasterRead});
  return start + length;
}

using Codec = CodecTest;

TEST_F(Codec, DecodesTheSampleToTheSameBitsOnEveryProcessor) {
  const Bytes stream = Read_File(VELARTO_SOURCE_DIR "/samples/street.vlr");
  for (const NamedKernelLevel& level : Test_Levels()) {
    kernels = Kernels_Select(level.mask);
    CodecPtr codec;
    uint64_t hash = 0xCBF29CE484222325;
    int32_t frames = 0;
    for (size_t at = 0; at < stream.size(); ++frames) {
      const int32_t length = Decode_Next(&codec, &stream[at], (int32_t)(stream.size() - at));
      ASSERT_GT(length, 0) << level.name << ", byte " << at;
      hash = Hash_Of_Picture(hash, *codec->raster);
      at += (size_t)length;
    }
    EXPECT_EQ(frames, 120) << level.name;
    EXPECT_EQ(hash, 6241523200795566212u) << level.name;
  }
}

TEST_F(Codec, EncodesToTheSameBitsOnEveryProcessor) {
  Noise noise = {7};
  for (const NamedKernelLevel& level : Test_Levels()) {
    kernels = Kernels_Select(level.mask);
    noise.state = 7;
    const CodecPtr codec = Whole_Codec(150, 101);
    Bytes pixels = noise.Some(150 * 101 * 3), frame(FrameStoreSize);
    for (size_t i = 450; i < pixels.size(); ++i) pixels[i] = (uint8_t)((pixels[i] + 3 * pixels[i - 450]) / 4);
    frame.resize((size_t)Codec_Compress_RGB888(codec.get(), 60, pixels.data(), 0, frame.data(), FrameStoreSize, 0, 0));
    EXPECT_EQ(Hash(0xCBF29CE484222325, frame.data(), frame.size()), 5219010547010180425u) << level.name;
  }
}

}  // namespace
