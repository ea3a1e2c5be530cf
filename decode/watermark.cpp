#include "decode/watermark.h"

/** The key: a bit for each coefficient value from -256 to 255. */
static constexpr char watermarkParity[] =
    "0110110111000000001110101111110010010111101111100100101100010101"
    "1111011000101000111001100010111001111101010100000111101100111011"
    "0011001010011001100011111110001001101100101010100000111100110100"
    "0001001010011000100110100000110111100110001001011110011010000011"
    "1010100001010101110011111000000100011110000100101100111111000111"
    "0011111110011011001101011111111101101010111110111001101111001000"
    "0000111100111000011111101101111100101011010010100111000010000100"
    "0111101001100010110011100001001111000011011110001110001011100110";
static_assert(sizeof watermarkParity == 512 + 1);

int32_t Watermark_Parity(int32_t value) {
  if (value == 0 || value < -256 || value > 255) return -1;
  return watermarkParity[value + 256] - '0';
}

int32_t Watermark_Block_Bit(const int32_t* scan) {
  int32_t counting = 0, ones = 0;
  for (int32_t k = WatermarkFirst; k <= WatermarkLast; ++k) {
    const int32_t parity = Watermark_Parity(scan[k]);
    counting += parity >= 0;
    ones += parity == 1;
  }
  if (counting < WatermarkLeast) return -1;
  const int32_t limit = counting * 3 / 4;
  return ones < limit && counting - ones >= limit ? 0 : 1;
}

void Watermark_Begin(WatermarkCollector* collector) { collector->length = collector->bitIndex = collector->byte = 0; }

void Watermark_Take_Block(void* user, const int32_t* scan) {
  auto* const collector = static_cast<WatermarkCollector*>(user);
  if (collector->length == WatermarkRoom) return;
  const int32_t bit = Watermark_Block_Bit(scan);
  if (bit < 0) return;
  const int32_t place = collector->bitIndex % 8;
  if (bit) collector->byte |= static_cast<uint8_t>(0x80 >> place);
  if (place != 0 || collector->bitIndex == 0) {
    ++collector->bitIndex;
    return;
  }
  // The top bit of a byte comes last. The first byte has nine bits; its first one sets the top bit as well.
  collector->text[collector->length++] = collector->byte ^ WatermarkMask;
  collector->byte = 0;
  collector->bitIndex = 1;
}
