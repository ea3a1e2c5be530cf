#include "bench/hostile_bodies.h"

#include "bench/random.h"
#include "decode/frame_header.h"
#include "decode/huffman_codes.h"
#include "decode/quant.h"

#include <algorithm>
#include <utility>

namespace {

/** Writes bits with stuffing. */
struct BitWriter {
  Bytes bytes;
  uint32_t held = 0;
  int32_t count = 0;
  void Put(uint32_t value, int32_t bits) {
    for (int32_t i = bits - 1; i >= 0; --i) {
      held = held << 1 | (value >> i & 1);
      if (++count % 8 != 0) continue;
      bytes.push_back(static_cast<uint8_t>(held));
      if (bytes.back() == 0xFF) bytes.push_back(0);
    }
  }
  void Put_Symbol(const HuffCode& code, uint8_t symbol) {
    uint32_t value = 0;
    const uint8_t* at = code.values.data();
    for (int32_t length = 1; length <= 16; ++length, value <<= 1) {
      for (int32_t i = 0; i < code.bits[length - 1]; ++i, ++value) {
        if (*at++ == symbol) return Put(value, length);
      }
    }
  }
};

/** The bits of the values that follow the codes. */
enum class Values : uint8_t { Zeros, Ones, Mixed, Random };

/** Gives the next symbol of a block, at scan position k; it may end the block. */
using NextSymbol = uint8_t (*)(Random* random, uint32_t block, int32_t k);

Bytes Coded(size_t most, int32_t dcSize, Values values, NextSymbol next) {
  BitWriter writer;
  Random random{11};
  const auto value = [&](int32_t size, int32_t k) {
    const uint32_t all = (1u << size) - 1;
    const uint32_t mixed = k % 2 == 0 ? 0x2AAAu : 0x1555u;
    writer.Put((values == Values::Zeros   ? 0
                : values == Values::Ones  ? all
                : values == Values::Mixed ? mixed
                                          : random.Next()) &
                   all,
               size);
  };
  for (uint32_t block = 0; writer.bytes.size() < most; ++block) {
    const bool luma = block % 6 < 4;
    writer.Put_Symbol(luma ? dcLumaCode : dcChromaCode, static_cast<uint8_t>(dcSize));
    value(dcSize, static_cast<int32_t>(block / 6));
    for (int32_t k = 1; k < 64;) {
      const uint8_t symbol = next(&random, block, k);
      writer.Put_Symbol(luma ? acLumaCode : acChromaCode, symbol);
      value(symbol % 16, k);
      if (symbol % 16 == 0 && symbol != 0xF0) break;
      k += symbol / 16 + 1;
    }
  }
  writer.bytes.resize(most);
  return writer.bytes;
}

/** A pattern, repeated. */
Bytes Repeated(size_t count, const Bytes& pattern) {
  Bytes body(count);
  for (size_t i = 0; i < count; ++i) body[i] = pattern[i % pattern.size()];
  return body;
}

/** Random bytes; `times` in 256 are FF, followed by `next`. */
Bytes Stuffed(size_t count, uint32_t times, uint8_t next) {
  Random random{5};
  Bytes body(count);
  for (size_t i = 0; i < count; ++i) {
    body[i] = static_cast<uint8_t>(random.Next());
    if (random.Below(256) >= times || i + 1 == count) continue;
    body[i] = 0xFF;
    body[++i] = next;
  }
  return body;
}

/** Runs of up to `longest` FF, with a random byte after each. */
Bytes Runs_Of_FF(size_t count, uint32_t longest) {
  Random random{6};
  Bytes body(count, 0xFF);
  for (size_t i = 1 + random.Below(longest); i < count; i += 2 + random.Below(longest))
    body[i] = static_cast<uint8_t>(random.Next());
  return body;
}

Bytes Damaged(Bytes good, uint32_t oneIn) {
  Random random{8};
  for (uint8_t& octet : good) {
    if (random.Below(oneIn) == 0) octet = static_cast<uint8_t>(random.Next());
  }
  return good;
}

/** Bodies made of bytes, whatever they decode to. */
std::vector<HostileBody> Byte_Bodies(size_t count, const Bytes& good) {
  return {{"random", 90, Random_Bytes(count, 7)},
          {"random, coarse", 1, Random_Bytes(count, 8)},
          {"all zero", 90, Bytes(count, 0)},
          {"all FF", 90, Bytes(count, 0xFF)},
          {"FF 00", 90, Repeated(count, {0xFF, 0})},
          {"FF D0..D7", 90,
           Repeated(count, {0xFF, 0xD0, 0xFF, 0xD1, 0xFF, 0xD2, 0xFF, 0xD3, 0xFF, 0xD4, 0xFF, 0xD5, 0xFF, 0xD6, 0xFF, 0xD7})},
          {"FF 01", 90, Repeated(count, {0xFF, 1})},
          {"FF 00 now and then", 90, Stuffed(count, 24, 0)},
          {"FF 00 often", 90, Stuffed(count, 100, 0)},
          {"markers often", 90, Stuffed(count, 100, 0xD8)},
          {"short runs of FF", 90, Runs_Of_FF(count, 6)},
          {"long runs of FF", 90, Runs_Of_FF(count, 5000)},
          {"alternating 55", 90, Bytes(count, 0x55)},
          {"alternating 33", 90, Bytes(count, 0x33)},
          {"a good one, damaged", 90, Damaged(good, 50)},
          {"a good one, coarse", 1, good},
          {"half a good one", 90, Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(good.size() / 2))}};
}

/** One of the symbols number `first` to `last` - 1, counted from the shortest code on. */
uint8_t Any_Of(Random* random, uint32_t block, uint32_t first, uint32_t last) {
  return (block % 6 < 4 ? acLumaValues : acChromaValues)[first + random->Below(last - first)];
}

uint8_t Longest(Random*, uint32_t, int32_t) { return 0x0A; }
uint8_t Longest_Or_Shortest(Random* random, uint32_t, int32_t) { return random->Below(2) == 0 ? 0x0A : 0x01; }
uint8_t Seldom_Long(Random* random, uint32_t, int32_t) { return random->Below(4) == 0 ? 0x0A : 0x01; }
uint8_t Any_Size(Random* random, uint32_t, int32_t) { return static_cast<uint8_t>(1 + random->Below(10)); }
uint8_t Shortest(Random*, uint32_t, int32_t) { return 0x01; }
uint8_t Twelve_Bits(Random* random, uint32_t, int32_t) { return static_cast<uint8_t>(4 + random->Below(3)); }
uint8_t Any_Code(Random* random, uint32_t block, int32_t) { return Any_Of(random, block, 0, 162); }
uint8_t Any_Long_Code(Random* random, uint32_t block, int32_t) { return Any_Of(random, block, 38, 162); }
uint8_t End_At_Once(Random*, uint32_t, int32_t) { return 0; }
uint8_t Wrong_End(Random*, uint32_t, int32_t) { return 0xFB; }
uint8_t End_Anywhere(Random* random, uint32_t, int32_t) { return random->Below(8) == 0 ? 0 : 0x01; }
uint8_t Full_Or_Empty(Random*, uint32_t block, int32_t) { return block / 2 % 2 == 0 ? 0 : 0x0A; }
uint8_t Zeros_Run(Random*, uint32_t, int32_t) { return 0xF0; }
uint8_t Run_And_Value(Random*, uint32_t, int32_t k) { return k < 49 ? 0xF0 : 0x0A; }
uint8_t Run_To_The_Last(Random*, uint32_t, int32_t k) { return k < 49 ? 0xF0 : 0xE1; }
uint8_t Past_The_End(Random*, uint32_t, int32_t k) { return k < 60 ? 0x31 : 0xFA; }
uint8_t One_Beyond_The_Middle(Random*, uint32_t, int32_t k) { return k < 29 ? 0xC1 : 0; }

/** Bodies made of codes, most of them in orders that no encoder writes. */
std::vector<HostileBody> Coded_Bodies(size_t count) {
  return {{"longest codes", 90, Coded(count, 11, Values::Mixed, Longest)},
          {"longest codes, coarse", 1, Coded(count, 11, Values::Mixed, Longest)},
          {"longest codes, ones", 100, Coded(count, 11, Values::Ones, Longest)},
          {"longest codes, zeros", 100, Coded(count, 11, Values::Zeros, Longest)},
          {"longest or shortest", 90, Coded(count, 11, Values::Random, Longest_Or_Shortest)},
          {"shortest, seldom long", 90, Coded(count, 0, Values::Random, Seldom_Long)},
          {"any size", 90, Coded(count, 11, Values::Random, Any_Size)},
          {"any size, coarse", 1, Coded(count, 11, Values::Random, Any_Size)},
          {"shortest codes", 90, Coded(count, 0, Values::Random, Shortest)},
          {"shortest codes, coarse", 1, Coded(count, 1, Values::Random, Shortest)},
          {"sizes 4 to 6", 90, Coded(count, 6, Values::Random, Twelve_Bits)},
          {"any code", 90, Coded(count, 6, Values::Random, Any_Code)},
          {"any long code", 90, Coded(count, 6, Values::Random, Any_Long_Code)},
          {"ends only", 90, Coded(count, 0, Values::Zeros, End_At_Once)},
          {"DC only", 1, Coded(count, 11, Values::Random, End_At_Once)},
          {"no code", 90, Coded(count, 1, Values::Ones, Wrong_End)},
          {"ends anywhere", 90, Coded(count, 2, Values::Random, End_Anywhere)},
          {"full or empty", 90, Coded(count, 2, Values::Random, Full_Or_Empty)},
          {"runs of zeros", 90, Coded(count, 0, Values::Zeros, Zeros_Run)},
          {"runs, then values", 1, Coded(count, 0, Values::Random, Run_And_Value)},
          {"the last value", 90, Coded(count, 0, Values::Random, Run_To_The_Last)},
          {"past the end", 90, Coded(count, 0, Values::Random, Past_The_End)},
          {"one value far out", 1, Coded(count, 0, Values::Random, One_Beyond_The_Middle)}};
}

}  // namespace

Bytes Random_Bytes(size_t count, uint32_t seed) {
  Random random{seed};
  Bytes bytes(count);
  for (uint8_t& octet : bytes) octet = static_cast<uint8_t>(random.Next());
  return bytes;
}

std::vector<HostileBody> Hostile_Bodies(size_t count, const Bytes& good) {
  std::vector<HostileBody> bodies = Byte_Bodies(count, good);
  for (HostileBody& body : Coded_Bodies(count)) bodies.push_back(std::move(body));
  for (HostileBody& body : bodies) body.bytes.resize(std::min(body.bytes.size(), count));
  return bodies;
}

Bytes Compact_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body) {
  Bytes frame(CompactHeaderSize + body.size());
  Compact_Put_Header(frame.data(), static_cast<int32_t>(body.size()), width, height, quality);
  std::copy(body.begin(), body.end(), frame.begin() + CompactHeaderSize);
  return frame;
}

Bytes Prefixed_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body) {
  const Bytes compact = Compact_Frame(width, height, quality, body);
  Bytes frame(PrefixSize + compact.size());
  Prefix_Write(frame.data(), static_cast<int64_t>(compact.size()));
  std::copy(compact.begin(), compact.end(), frame.begin() + PrefixSize);
  return frame;
}

Bytes Jfif_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body) {
  uint16_t luma[64], chroma[64];
  Quant_Build(quality, luma, chroma);
  Bytes frame(JfifHeaderSize + body.size());
  JfifCursor head = {frame.data(), 0};
  JFIF_Write_Header(&head, width, height, luma, chroma);
  std::copy(body.begin(), body.end(), frame.begin() + JfifHeaderSize);
  for (size_t i = JfifHeaderSize; i + 1 < frame.size(); ++i) {
    if (frame[i] == 0xFF && frame[i + 1] == 0xD9) frame[i + 1] = 0xD8;
  }
  if (frame.back() == 0xFF) frame.back() = 0;
  frame.push_back(0xFF);
  frame.push_back(0xD9);
  return frame;
}
