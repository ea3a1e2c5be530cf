// Pictures to frames: every level writes the same bytes, and a frame decodes to the coefficients that were encoded.
#include "decode/decoder.h"
#include "decode/huffman_decode.h"
#include "fuzz/run.h"
#include "pixel/compress.h"

struct Still {
  int32_t width, height, quality, withMarkers, doubleRows, capacity;
  Bytes pixels;
};

static Bytes Compress(uint32_t mask, const Still& still, uint8_t failure = 0) {
  const Run run(mask);
  Let_Memory_Fail(failure);
  JdecDecoder* const decoder = JDEC_New(still.width, still.height);
  Bytes frame((size_t)still.capacity);
  const int32_t length = JDEC_Compress_RGB888(decoder, still.quality, still.pixels.data(), 0, frame.data(), still.capacity,
                                              still.withMarkers, still.doubleRows);
  REQUIRE(length >= 0 && length <= still.capacity);
  frame.resize((size_t)length);
  JDEC_Free(decoder);
  return frame;
}

/** The coefficients of all blocks that a frame carries. */
static std::vector<int32_t> Coefficients(const JdecCodec& codec) {
  std::vector<int32_t> all;
  const auto add = [&](int32_t** plane, int32_t rows, int32_t blocks) {
    for (int32_t row = 0; row < rows; ++row) all.insert(all.end(), plane[row], plane[row] + (ptrdiff_t)blocks * 64);
  };
  const int32_t columns = codec.width / 16, rows = codec.height / 16;
  add(codec.coefY, rows * 2, columns * 2), add(codec.coefCb, rows, columns), add(codec.coefCr, rows, columns);
  return all;
}

static void Round_Trip(uint32_t mask, const Still& still) {
  const Run run(mask);
  JdecDecoder* const decoder = JDEC_New(still.width, still.height);
  JdecCodec* const codec = decoder->codec;
  if (Codec_Transform_RGB888(codec, still.quality, still.pixels.data(), still.doubleRows != 0)) {
    const std::vector<int32_t> encoded = Coefficients(*codec);
    if (Codec_Encode_Store(codec, still.withMarkers != 0)) {
      codec->frame->position = still.withMarkers ? JfifHeaderSize : CompactHeaderSize;
      Huff_Decode_Frame(codec, codec->coefY, codec->coefCb, codec->coefCr, codec->width, codec->height, codec->frame);
      REQUIRE(encoded == Coefficients(*codec));
    }
  }
  JDEC_Free(decoder);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input = {data, size};
  const uint32_t mask = Draw_Level(&input);
  const uint8_t flags = input.Byte();
  Still still = {input.Byte() % 200 + 1, input.Byte() % 120 + 1, input.Number(), flags & 1, flags & 2, 512000, {}};
  if (flags & 4) still.capacity = input.Word() + 1;
  const Bytes drawn = input.Some(input.left);
  still.pixels.resize((size_t)still.width * still.height * 3);
  for (size_t i = 0; i < still.pixels.size() && !drawn.empty(); ++i) still.pixels[i] = drawn[i % drawn.size()];
  if (flags & 8)
    return Compress(mask, still, drawn.empty() ? uint8_t{0} : drawn[0]), 0;  // The levels don't allocate the same blocks.
  const Bytes frame = Compress(mask, still);
  if (mask != KernelPlain) REQUIRE(frame == Compress(KernelPlain, still));
  Round_Trip(mask, still);
  return 0;
}
