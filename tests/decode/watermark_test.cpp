#include "decode/watermark_text.h"
#include "support/streams.h"

#include <array>

namespace {

/** A block with those coefficients at the places that count. */
std::array<int32_t, 64> Block(const std::vector<int32_t>& values) {
  std::array<int32_t, 64> scan = {};
  std::copy(values.begin(), values.end(), scan.begin() + WatermarkFirst);
  return scan;
}

/** A value of that parity. */
int32_t Value(int32_t parity) {
  int32_t value = 1;
  while (Watermark_Parity(value) != parity) ++value;
  return value;
}

const int32_t zero = Value(0), one = Value(1);

TEST(Watermark, BlocksCarryABitByMajority) {
  uint64_t key = 0;  // Over all values, since each can decide a bit.
  for (int32_t value = -256; value <= 255; ++value) key = key * 31 + (uint64_t)(Watermark_Parity(value) + 1);
  EXPECT_EQ(key, 0xA64FE1E8D6C32C4Du);
  for (const int32_t outside : {0, -257, 256, 100000, INT32_MIN}) EXPECT_EQ(Watermark_Parity(outside), -1) << outside;
  const auto bit = [](const std::vector<int32_t>& values) { return Watermark_Block_Bit(Block(values).data()); };
  EXPECT_EQ(bit({}), -1);
  EXPECT_EQ(bit({zero, zero, 0, 256, -257}), -1);
  EXPECT_EQ(bit({zero, zero, zero}), 0);
  EXPECT_EQ(bit({zero, one, zero}), 0);  // Two of three.
  EXPECT_EQ(bit({zero, one, one}), 1);
  EXPECT_EQ(bit({zero, zero, one, one}), 1);  // No side has three of four.
  EXPECT_EQ(bit({zero, zero, one, zero}), 0);
  std::vector<int32_t> whole(19, one);
  std::fill_n(whole.begin(), 13, zero);
  EXPECT_EQ(bit(whole), 1);  // Fourteen of nineteen are asked for.
  whole[18] = zero;
  EXPECT_EQ(bit(whole), 0);
  auto elsewhere = Block({one, one});
  elsewhere[44] = elsewhere[1] = one;
  EXPECT_EQ(Watermark_Block_Bit(elsewhere.data()), -1);
}

TEST(Watermark, FirstByteHasNineBitsAndTheLengthIsLimited) {
  const auto clear = Block({zero, zero, zero}), set = Block({one, one, one}), none = Block({});
  const std::string text = "A\xDA\xFF";
  WatermarkCollector collector = {};
  for (size_t i = 0; i < text.size(); ++i) {
    const int coded = (uint8_t)text[i] ^ 0x24;
    Watermark_Take_Block(&collector, none.data());
    // The top bit comes last. The first byte has one more bit before the others; the top bit is set if one of the two is.
    if (i == 0) Watermark_Take_Block(&collector, clear.data());
    for (const int place : {6, 5, 4, 3, 2, 1, 0, 7}) Watermark_Take_Block(&collector, (coded >> place & 1 ? set : clear).data());
    EXPECT_EQ(collector.length, (int32_t)i + 1);
  }
  EXPECT_EQ(std::string(collector.text, collector.text + collector.length), text);
  for (int i = 0; i < 9000; ++i) Watermark_Take_Block(&collector, set.data());
  EXPECT_EQ(collector.length, WatermarkRoom);
  EXPECT_EQ(std::string(collector.text, collector.text + text.size()), text);
}

TEST_F(FramesTest, WatermarkTextIsThatOfTheFrameDecodedLast) {
  const DecoderPtr decoder = Headless_Decoder(48, 48);
  uint8_t buffer[WatermarkRoom];
  const auto publish = [] {
    WatermarkCollector collector = {};
    std::fill_n(collector.text, collector.length = 5, 'x');
    Watermark_Publish(collector);
  };
  const auto read = [&] { return JDEC_read_watermark_string(decoder.get(), buffer, WatermarkRoom); };
  publish();
  buffer[4] = 'y';
  EXPECT_EQ(JDEC_read_watermark_string(nullptr, buffer, 4), 5);
  EXPECT_EQ(JDEC_read_watermark_string(nullptr, nullptr, 0), 5);
  EXPECT_EQ(buffer[4], 'y');
  EXPECT_EQ(read(), 5);
  EXPECT_EQ(buffer[4], 'x');
  int32_t status = 1;
  Push(decoder.get(), small.compact, &status);  // A frame without a text.
  EXPECT_EQ(read(), 0);
  EXPECT_EQ(status, 0);
  publish();
  JDEC_show(decoder.get(), 0);
  Push(decoder.get(), small.compact, &(status = 1));
  EXPECT_EQ(read(), 0);
  EXPECT_EQ(status, 1);
  publish();
  JDEC_show(decoder.get(), 1);
  Push(decoder.get(), Compact_Frame(65535, 65535, 50, Bytes(20)));  // Refused.
  EXPECT_EQ(read(), 0);
}

}  // namespace
