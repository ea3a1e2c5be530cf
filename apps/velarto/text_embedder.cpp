#include "apps/velarto/text_embedder.h"

#include "decode/huffman_tables.h"
#include "decode/watermark.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

/** Range of the coefficients that carry bits. */
static constexpr int32_t LeastCounting = -256, MostCounting = 255;

static int32_t Block_Count(int32_t width, int32_t height) { return (width / 16) * (height / 16) * 4; }

int32_t Text_Room(int32_t width, int32_t height) {
  // The first byte takes nine bits, each further one eight.
  return std::min(std::max(Block_Count(width, height) - 1, 0) / 8, WatermarkRoom);
}

/** The bits in the order of their blocks: of each byte the top one last, of the first byte also first. */
static std::vector<uint8_t> Text_Bits(const std::string& text) {
  std::vector<uint8_t> bits;
  for (const char c : text) {
    const int masked = static_cast<uint8_t>(c) ^ WatermarkMask;
    if (bits.empty()) bits.push_back(masked >> 7 & 1);
    for (const int place : {6, 5, 4, 3, 2, 1, 0, 7}) bits.push_back(masked >> place & 1);
  }
  return bits;
}

/** Luma block `index` in the order in which blocks are decoded. */
static int32_t* Luma_Block(const JdecCodec* codec, int32_t index) {
  const int32_t across = codec->width / 16, macroblock = index / 4;
  const int32_t row = macroblock / across * 2 + index % 4 / 2, column = macroblock % across * 2 + index % 2;
  return codec->coefY[row] + static_cast<size_t>(column) * 64;
}

/** The nearest value in the range with that parity; of two the one nearer to 0. */
static int32_t Nearest(int32_t value, int32_t parity) {
  const int32_t from = std::clamp(value, LeastCounting, MostCounting), inward = from > 0 ? -1 : 1;
  for (int32_t distance = 0;; ++distance) {
    for (const int32_t candidate : {from + inward * distance, from - inward * distance}) {
      if (Watermark_Parity(candidate) == parity) return candidate;
    }
  }
}

/** Makes the block carry the bit. Each round changes the value that costs least, of equal ones that of the highest frequency:
 * while too few values carry bits one that doesn't, then one of the wrong parity. At the latest the block has the bit when all
 * values have the right parity. */
static void Set_Bit(int32_t* scan, int32_t bit) {
  for (int32_t has = Watermark_Block_Bit(scan); has != bit; has = Watermark_Block_Bit(scan)) {
    const int32_t wanted = has < 0 ? -1 : 1 - bit;
    int32_t best = -1;
    for (int32_t k = WatermarkLast; k >= WatermarkFirst; --k) {
      if (Watermark_Parity(scan[k]) != wanted) continue;
      const auto cost = [scan, bit](int32_t at) { return std::abs(scan[at] - Nearest(scan[at], bit)); };
      if (best < 0 || cost(k) < cost(best)) best = k;
    }
    scan[best] = Nearest(scan[best], bit);
  }
}

/** Makes the block carry no bit, by clearing its smallest values. */
static void Clear_Bit(int32_t* scan) {
  while (Watermark_Block_Bit(scan) >= 0) {
    int32_t best = -1;
    for (int32_t k = WatermarkLast; k >= WatermarkFirst; --k) {
      if (Watermark_Parity(scan[k]) >= 0 && (best < 0 || std::abs(scan[k]) < std::abs(scan[best]))) best = k;
    }
    scan[best] = 0;
  }
}

bool Text_Embed(JdecCodec* codec, const std::string& text, std::string* error) {
  const int32_t room = Text_Room(codec->width, codec->height);
  if (text.size() > static_cast<size_t>(room)) {
    *error = "the text has " + std::to_string(text.size()) + " bytes, a picture of " + std::to_string(codec->width) + "x" +
             std::to_string(codec->height) + " carries " + std::to_string(room);
    return false;
  }
  const std::vector<uint8_t> bits = Text_Bits(text);
  // Nothing is read after a text of full length.
  const int32_t blocks =
      text.size() == WatermarkRoom ? static_cast<int32_t>(bits.size()) : Block_Count(codec->width, codec->height);
  for (int32_t i = 0; i < blocks; ++i) {
    int32_t* const block = Luma_Block(codec, i);
    int32_t scan[64];
    for (int32_t k = 0; k < 64; ++k) scan[k] = block[zigzagOrder[k]];
    if (static_cast<size_t>(i) < bits.size()) {
      Set_Bit(scan, bits[static_cast<size_t>(i)]);
    } else {
      Clear_Bit(scan);
    }
    for (int32_t k = WatermarkFirst; k <= WatermarkLast; ++k) block[zigzagOrder[k]] = scan[k];
  }
  return true;
}
