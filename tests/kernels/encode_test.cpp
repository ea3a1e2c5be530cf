// The encoder of macroblock rows, at every vector level, against the plain kernels that do the same in steps.
#include "pixel/color_tables.h"
#include "pixel/encode_tables.h"
#include "pixel/forward.h"
#include "pixel/huffman_encode.h"
#include "support/inputs.h"
#include "support/level_test.h"

#include <cmath>
#include <numbers>

namespace {

constexpr uint8_t Guard = 0xA7;

struct EncodeKernels : LevelTest<CodecTest> {
  Noise noise{17};

  /** 8x8 samples of one frequency, from flat to black and white, plus noise of any size. */
  void Fill_Block(uint8_t* const* rows, int32_t left) {
    const int32_t middle = noise.Between(0, 255), size = noise.Between(-20, 20) * noise.Between(0, 15);
    const int32_t rough = noise.Between(0, 2) * noise.Between(0, 127), u = noise.Between(0, 7), v = noise.Between(0, 7);
    for (int32_t y = 0; y < 8; ++y) {
      for (int32_t x = 0; x < 8; ++x) {
        const double wave = std::cos((2 * x + 1) * u * std::numbers::pi / 16) * std::cos((2 * y + 1) * v * std::numbers::pi / 16);
        rows[y][left + x] = (uint8_t)std::clamp(middle + size * wave + noise.Between(-rough, rough), 0.0, 255.0);
      }
    }
  }
};
TEST_AT_VECTOR_LEVELS(EncodeKernels);

/** Two macroblock rows, and what the plain kernels make of them. */
struct Rows {
  CodecPtr owner;
  JdecCodec* const codec = owner.get();
  const JdecPlanes* const planes = codec->planes;
  explicit Rows(int32_t width) : owner(Whole_Codec(width, 32)) {}

  Bytes Encoded() const {
    const int32_t width = codec->width;
    kernels = Kernels_Select(KernelPlain);
    Forward_DCT_Plane(planes->yRows, codec->coefY, width, 32, codec->lumaForward, codec->lumaInverse);
    Forward_DCT_Plane(planes->cbRows, codec->coefCb, width / 2, 16, codec->chromaForward, codec->chromaInverse);
    Forward_DCT_Plane(planes->crRows, codec->coefCr, width / 2, 16, codec->chromaForward, codec->chromaInverse);
    codec->frame->length = 0;
    Huff_Encode_Frame(codec, codec->coefY, codec->coefCb, codec->coefCr, width, 32, codec->frame);
    return {codec->frame->data, codec->frame->data + codec->frame->length};
  }

  /** By a kernel that may write `room` bytes; filled to a whole byte. Empty if the room was too small. */
  Bytes Encoded(EncodeRowKernel kernel, size_t room) const {
    Bytes out(room + 100, Guard);
    HuffWriter writer = {out.data(), out.data() + room, 0, 0, {}};
    int32_t whole = 1;
    for (ptrdiff_t m = 0; m < 2 && whole; ++m) {
      const EncodeSource source = {planes->yRows + 16 * m, planes->cbRows + 8 * m, planes->crRows + 8 * m, codec->lumaForward,
                                   codec->lumaInverse,     codec->chromaForward,   codec->chromaInverse};
      whole = kernel(huffEncodeTables, &source, codec->width / 16, &writer);
    }
    EXPECT_EQ(std::count(out.end() - 100, out.end(), Guard), 100);
    if (!whole) return {};
    out.resize((size_t)(writer.next - out.data()));
    if (writer.bitCount > 0) out.push_back((uint8_t)(writer.bits << (8 - writer.bitCount) | 0xFFu >> writer.bitCount));
    if (writer.bitCount > 0 && out.back() == 0xFF) out.push_back(0);
    return out;
  }
};

TEST_P(EncodeKernels, MacroblockRows) {
  size_t stuffed = 0, refused = 0;
  for (int32_t columns = 1; columns < 12; ++columns) {
    const Rows rows(16 * columns + columns * 5 % 16);
    for (int32_t round = 0; round < 150; ++round) {
      Codec_Set_Quality(rows.codec, noise.Between(10, 90));
      for (int32_t x = 0; x < 2 * columns; ++x) {
        for (int32_t y = 0; y < 4; ++y) Fill_Block(rows.planes->yRows + 8 * y, 8 * x);
        for (int32_t y = 0; y < 2 && x < columns; ++y) Fill_Block(rows.planes->cbRows + 8 * y, 8 * x);
        for (int32_t y = 0; y < 2 && x < columns; ++y) Fill_Block(rows.planes->crRows + 8 * y, 8 * x);
      }
      const Bytes expected = rows.Encoded();
      ASSERT_EQ(rows.Encoded(record.encodeRow, 3 * expected.size()), expected) << "columns " << columns << " round " << round;
      ASSERT_EQ(rows.Encoded(record.encodeRow, expected.size()), expected) << "columns " << columns << " round " << round;
      refused += rows.Encoded(record.encodeRow, expected.size() - 3).empty();
      stuffed += (size_t)std::count(expected.begin(), expected.end(), 0xFF);
    }
  }
  EXPECT_EQ(refused, 11u * 150);
  EXPECT_GT(stuffed, 1000u);
}

}  // namespace
