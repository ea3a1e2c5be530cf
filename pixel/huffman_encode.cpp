#include "pixel/huffman_encode.h"

#include "decode/global_tables.h"
#include "decode/huffman_codes.h"
#include "pixel/encode_tables.h"

#include <bit>

namespace {

constexpr uint8_t EndOfBlock = 0x00, SixteenZeros = 0xF0;

void Huff_Put_Byte(JdecCodec* codec, uint8_t byte) {
  if (codec->streamCount < FrameStoreSize) *codec->streamPtr++ = byte;
  ++codec->streamCount;
}

void Huff_Reset_Bits(JdecCodec* codec) {
  codec->writeBuffer = 0;
  codec->writeCount = 0;
}

/** Appends the low `count` bits of value, 0 to 16. At most 7 bits are pending, so that they fit the accumulator's 24 bits. */
void Huff_Put_Bits(JdecCodec* codec, uint32_t value, int32_t count) {
  if (count == 0) return;
  int32_t total = codec->writeCount + count;
  codec->writeBuffer |= (value & bitMasks[count]) << (24 - total);
  for (; total >= 8; total -= 8) {
    const auto byte = static_cast<uint8_t>(codec->writeBuffer >> 16);
    Huff_Put_Byte(codec, byte);
    if (byte == 0xFF) Huff_Put_Byte(codec, 0);
    codec->writeBuffer <<= 8;
  }
  codec->writeCount = total;
}

void Huff_Flush_Bits(JdecCodec* codec) {
  if (codec->writeCount != 0) Huff_Put_Bits(codec, 0xFF, 8 - codec->writeCount);
}

int32_t Bit_Size(int32_t value) {
  return static_cast<int32_t>(std::bit_width(static_cast<uint32_t>(value < 0 ? -value : value)));
}

/** Writes the symbol of a run and a value, and the low bits of the value, of value - 1 if it is negative. */
void Huff_Put_Value(JdecCodec* codec, const JdecHuffEncode& table, int32_t run, int32_t value) {
  const int32_t size = Bit_Size(value);
  const int32_t symbol = run * 16 + size;
  Huff_Put_Bits(codec, table.code[symbol], table.size[symbol]);
  Huff_Put_Bits(codec, static_cast<uint32_t>(value < 0 ? value - 1 : value), size);
}

/** Encodes a block of 64 coefficients in natural order. Gives its DC value, the predictor of the next one. */
int32_t Huff_Encode_Block(JdecCodec* codec, const int32_t* block, int32_t predictor, const JdecHuffEncode& dc,
                          const JdecHuffEncode& ac) {
  Huff_Put_Value(codec, dc, 0, block[0] - predictor);
  int32_t run = 0;
  for (int32_t k = 1; k < 64; ++k) {
    const int32_t value = block[zigzagOrder[k]];
    if (value == 0) {
      ++run;
      continue;
    }
    for (; run > 15; run -= 16) Huff_Put_Bits(codec, ac.code[SixteenZeros], ac.size[SixteenZeros]);
    Huff_Put_Value(codec, ac, run, value);
    run = 0;
  }
  if (run > 0) Huff_Put_Bits(codec, ac.code[EndOfBlock], ac.size[EndOfBlock]);
  return block[0];
}

}  // namespace

void Huff_Encode_Frame(JdecCodec* codec, int32_t* const* coefY, int32_t* const* coefCb, int32_t* const* coefCr, int32_t width,
                       int32_t height, JdecFrameBuffer* frame) {
  codec->streamPtr = frame->data + frame->length;
  codec->streamCount = frame->length;
  Huff_Reset_Bits(codec);
  const HuffEncodeTables &lumaTables = huffEncodeTables[0], &chromaTables = huffEncodeTables[1];
  int32_t luma = 0, cb = 0, cr = 0;
  for (int32_t m = 0; m < height / 16; ++m) {
    for (int32_t n = 0; n < width / 16; ++n) {
      const size_t left = static_cast<size_t>(n) * 128, half = static_cast<size_t>(n) * 64;
      const int32_t *const upper = coefY[2 * m] + left, *const lower = coefY[2 * m + 1] + left;
      for (const int32_t* const block : {upper, upper + 64, lower, lower + 64}) {
        luma = Huff_Encode_Block(codec, block, luma, *lumaTables.dcCode, *lumaTables.acCode);
      }
      cb = Huff_Encode_Block(codec, coefCb[m] + half, cb, *chromaTables.dcCode, *chromaTables.acCode);
      cr = Huff_Encode_Block(codec, coefCr[m] + half, cr, *chromaTables.dcCode, *chromaTables.acCode);
    }
  }
  Huff_Flush_Bits(codec);
  frame->length = codec->streamCount;
}
