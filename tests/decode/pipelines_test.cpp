// The row pipeline at every kernel level against the plain pipeline: the same samples, pixels and hidden text for any size and
// any bytes, whatever the buffers held before.
#include "decode/idct.h"
#include "decode/watermark_text.h"
#include "support/levels.h"
#include "support/streams.h"

namespace {

using Rows = std::vector<Bytes>;

Rows Planes_Of(const JdecDecoder* decoder) {
  const JdecPlanes* const planes = decoder->codec->planes;
  Rows rows;
  for (int32_t i = 0; i < planes->yHeight; ++i) rows.emplace_back(planes->yRows[i], planes->yRows[i] + planes->yWidth);
  for (int32_t i = 0; i < planes->cbHeight; ++i) {
    rows.emplace_back(planes->cbRows[i], planes->cbRows[i] + planes->cbWidth);
    rows.emplace_back(planes->crRows[i], planes->crRows[i] + planes->crWidth);
  }
  return rows;
}

/** What a caller can see after each step on one decoder. */
struct Seen {
  std::vector<Rows> planes;
  std::vector<Bytes> pictures, texts;
  bool operator==(const Seen&) const = default;
};

struct Pipelines : LibraryTest {
  Noise noise{11};
  static constexpr int32_t Steps = 8;

  /** Noise: some much too short for its picture, some full of markers, some with the bytes of long codes and more than the
   *  picture can need. */
  std::vector<Bytes> Bodies(int32_t width, int32_t height) {
    std::vector<Bytes> bodies;
    for (int32_t i = 0; i < Steps; ++i) {
      static constexpr int32_t shares[4] = {9, 2, 500, 2};
      const bool full = i % 4 == 1;
      Bytes body =
          noise.Some((size_t)(full ? std::min(7 * width * height, 60000) : noise.Between(0, width * height / shares[i % 4])));
      for (uint8_t& byte : body) byte = i % 3 == 2 && noise.Next() % 8 == 0 ? 0xFF : full && noise.Next() % 2 == 0 ? 0xFE : byte;
      bodies.push_back(body);
    }
    return bodies;
  }

  /** Macroblocks of the longest codes with the longest values, except that the first `shorter` codes are short. */
  Bytes Longest_Codes(int32_t macroblocks, int32_t shorter) {
    Bytes body;
    uint64_t bits = 0;
    int32_t count = 0;
    const auto put = [&](uint32_t code, int32_t length, int32_t size) {
      bits = (bits << length | code) << size | (noise.Next() & ((1u << size) - 1));
      for (count += length + size; count >= 8; count -= 8) {
        body.push_back((uint8_t)(bits >> (count - 8)));
        if (body.back() == 0xFF) body.push_back(0);
      }
    };
    for (int32_t b = 0; b < 6 * macroblocks; ++b) {
      const bool luma = b % 6 < 4;
      put(luma ? 0x1FE : 0x7FE, luma ? 9 : 11, 11);
      for (int32_t k = 1; k < 64; ++k) {
        if (luma && shorter-- > 0) {
          put(0, 2, 1);
        } else {
          put(luma ? 0xFF83 : 0xFF4, luma ? 16 : 12, 10);
        }
      }
    }
    return body;
  }

  static Seen Run(uint32_t mask, int32_t width, int32_t height, const std::vector<Bytes>& bodies, const Bytes& pixels) {
    kernels = Kernels_Select(mask);
    Watermark_Reset();
    const DecoderPtr decoder = Headless_Decoder(width, height);
    Seen seen;
    for (int32_t i = 0; i < Steps; ++i) {
      // A picture compressed in between leaves its coefficients where there is no macroblock. Its chroma has coefficients in the
      // last positions, which that of noise seldom has.
      const Bytes frame = i % 4 == 2 ? Compressed(decoder.get(), 20 * i, pixels, 0) : Bytes();
      Push(decoder.get(), !frame.empty() ? frame : Compact_Frame(width, height, 17 + 12 * i, bodies[(size_t)i]));
      seen.planes.push_back(Planes_Of(decoder.get()));
      seen.pictures.push_back(Current_Picture(decoder.get()));
      Bytes text(WatermarkRoom);
      text.resize((size_t)Watermark_Read(text.data(), WatermarkRoom));
      seen.texts.push_back(text);
    }
    return seen;
  }
};

TEST_F(Pipelines, GiveTheSamePictures) {
  size_t longest = 0;
  for (const auto& [width, height] :
       {std::pair{16, 16}, {17, 31}, {9, 40}, {40, 9}, {24, 24}, {56, 72}, {330, 57}, {95, 65}, {1, 1}, {608, 16}}) {
    const std::vector<Bytes> bodies = Bodies(width, height);
    const Bytes pixels = noise.Some((size_t)(width * height * 3));
    const Seen expected = Run(KernelPlain, width, height, bodies, pixels);
    for (const auto& [level, mask] : Test_Levels()) {
      EXPECT_TRUE(Run(mask, width, height, bodies, pixels) == expected) << level << " " << width << "x" << height;
      useMmxIdct = 1;
      const Seen packed = Run(KernelPlain, width, height, bodies, pixels);
      EXPECT_TRUE(Run(mask, width, height, bodies, pixels) == packed) << level << ", packed, " << width << "x" << height;
      useMmxIdct = 0;
    }
    for (const Bytes& text : expected.texts) longest = std::max(longest, text.size());
  }
  EXPECT_GT(longest, 5u);  // There are hidden texts to compare.
}

/** The data that a strip leaves ranges from more to less than the most that the next strip can need. */
TEST_F(Pipelines, FindAllDataOfTheLongestCodes) {
  for (int32_t shorter = 0; shorter < 480;) {
    std::vector<Bytes> bodies;
    for (int32_t i = 0; i < Steps; ++i, shorter += 10) bodies.push_back(Longest_Codes(32, shorter));
    const Bytes pixels(size_t{512} * 16 * 3);
    const Seen expected = Run(KernelPlain, 512, 16, bodies, pixels);
    for (const auto& [level, mask] : Test_Levels()) {
      EXPECT_TRUE(Run(mask, 512, 16, bodies, pixels) == expected) << level << ", up to " << shorter;
    }
  }
}

}  // namespace
