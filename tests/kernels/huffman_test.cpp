// Entropy decoding against a decoder that reads bit by bit, with the code tables that another encoder writes into its files.
#include "decode/huffman_tables.h"
#include "decode/strip_tables.h"
#include "support/inputs.h"
#include "support/level_test.h"

#include <array>
#include <bitset>

namespace {

/** A code by length and value, -1 where there is none, made by counting as in Annex C of the JPEG standard. */
struct BitwiseCode {
  std::array<std::vector<int>, 17> symbols;
  std::array<bool, 256> startsLongCode{};

  explicit BitwiseCode(const uint8_t* segment) {
    const uint8_t* symbol = segment + 21;
    size_t code = 0;
    for (size_t length = 1; length <= 16; ++length, code <<= 1) {
      symbols[length].assign(size_t{1} << length, -1);
      for (int i = 0; i < segment[4 + length]; ++i, ++code) {
        symbols[length][code] = *symbol++;
        if (length > 8) startsLongCode[code >> (length - 8)] = true;
      }
    }
  }
};

/** A macroblock row. */
struct Row {
  std::array<std::vector<int32_t>, 4> planes;  // Upper, lower, Cb, Cr; 8 watched words at either end.
  std::vector<int32_t> predictors{11, -5, 7}, scans;
  explicit Row(int32_t columns) {
    for (size_t i = 0; i < 4; ++i) {
      planes[i].assign((size_t)columns * (i < 2 ? 128 : 64) + 16, 0x5A5A5A5A);
      std::fill(planes[i].begin() + 8, planes[i].end() - 8, 0);
    }
  }
  int32_t* At(size_t plane) { return planes[plane].data() + 8; }
  bool operator==(const Row&) const = default;
};

struct ReferenceDecoder {
  Bytes jpeg = Read_File(Data_Path("tile-48x48-q50.jpg"));
  BitwiseCode dcLuma{&jpeg[177]}, acLuma{&jpeg[210]}, dcChroma{&jpeg[393]}, acChroma{&jpeg[426]};
  Bytes data;  // Without stuffing; zeros follow.
  size_t position = 0;
  int notCodes = 0, runsPastEnd = 0;

  int Bits(int count) {
    int value = 0;
    for (; count > 0; --count, ++position) {
      const int octet = position / 8 < data.size() ? data[position / 8] : 0;
      value = value << 1 | (octet >> (7 - position % 8) & 1);
    }
    return value;
  }
  int Symbol(const BitwiseCode& code) {
    const size_t start = position;
    size_t bits = 0;
    for (size_t length = 1; length <= 16; ++length) {
      bits = bits << 1 | (size_t)Bits(1);
      if (code.symbols[length][bits] >= 0) return code.symbols[length][bits];
    }
    ++notCodes;
    position = start + (code.startsLongCode[bits >> 8] ? 8 : 0);
    return 0;
  }
  int Value(int size) {
    const int value = Bits(size);
    return size > 0 && value < 1 << (size - 1) ? value - (1 << size) + 1 : value;
  }
  void Block(bool luma, int32_t* predictor, int32_t* block, std::vector<int32_t>* scans) {
    static constexpr uint8_t order[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
                                          41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
                                          30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};
    int32_t scan[64] = {};
    block[0] = *predictor += Value(Symbol(luma ? dcLuma : dcChroma));
    for (int k = 1; k < 64; ++k) {
      const int symbol = Symbol(luma ? acLuma : acChroma);
      if (symbol % 16 == 0 && symbol != 0xF0) break;
      k += symbol / 16;
      if (symbol == 0xF0) continue;
      runsPastEnd += k > 63;
      const int last = std::min(k, 63);
      scan[last] = block[order[last]] = Value(symbol % 16);
    }
    if (luma) scans->insert(scans->end(), scan, scan + 64);
  }
  Row Decode(const Bytes& raw, int32_t columns) {
    data = Without_Stuffing(raw);
    position = 0;
    Row row(columns);
    for (int32_t c = 0; c < columns; ++c) {
      for (const int32_t i : {0, 1, 2, 3}) Block(true, &row.predictors[0], row.At(i / 2) + 128 * c + i % 2 * 64, &row.scans);
      for (const int32_t i : {1, 2}) Block(false, &row.predictors[i], row.At(i + 1) + 64 * c, nullptr);
    }
    return row;
  }
};

void Keep_Scan(void* scans, const int32_t* scan) {
  auto* const target = static_cast<std::vector<int32_t>*>(scans);
  target->insert(target->end(), scan, scan + 64);
}

Row Decode_By_Kernel(DecodeRowKernel kernel, const Bytes& raw, int32_t columns) {
  Row row(columns);
  const auto exact = Exact_Copy(raw);
  HuffReader reader = {exact.get(), exact.get() + raw.size(), 0, 0};
  kernel(&reader, &huffTables, row.At(0), row.At(1), row.At(2), row.At(3), columns, row.predictors.data(), Keep_Scan, &row.scans);
  return row;
}

/** Copies a block of a strip, whose DC is a difference, to a row. */
void Take_Block(Row* row, const int16_t* words, StripProgress progress, int32_t b, int32_t column) {
  int32_t scan[64], sizes = 0, last = 0;
  int32_t* const predictor = &row->predictors[b < 4 ? 0 : b - 3];
  int32_t* const target = row->At(b < 4 ? b / 2 : b - 2) + (b < 4 ? 128 * column + b % 2 * 64 : 64 * column);
  for (int32_t k = 0; k < 64; ++k) {
    const int32_t natural = zigzagOrder[k];
    scan[k] = words[natural / 8 * 16 + natural % 8];
    target[natural] = k == 0 ? * predictor += scan[0] : scan[k];
    if (k > 0) sizes += std::abs(scan[k]);
    if (scan[k] != 0) last = k;
  }
  EXPECT_EQ((int32_t)(progress >> StripSizeShift), sizes);
  EXPECT_GT((int32_t)(progress & 0xFF), last);
  EXPECT_LE(progress & 0xFF, 64u);
  scan[0] = 0;
  if (b < 4) row->scans.insert(row->scans.end(), scan, scan + 64);
}

/** The same in two strips, from data without stuffing. */
Row Decode_By_Strips(const Kernels& record, const Bytes& raw, int32_t columns) {
  Row row(columns);
  const auto exact = Exact_Copy(raw), data = Exact_Copy(Bytes(raw.size() + 2 * StripPadding));
  const uint8_t* stuffed = exact.get();
  StripReader reader = {data.get(), 0, 8 * record.unstuff(&stuffed, stuffed + raw.size(), data.get(), raw.size())};
  for (int32_t done = 0; done < columns;) {
    const int32_t count = done == 0 && columns > 1 ? columns / 2 : columns - done;
    std::vector<int16_t> words((size_t)count * StripMacroblockSize + 16, 0);
    words.front() = words.back() = 0x5A5A;
    StripReach reach;
    record.decodeStrip(&reader, &stripTables, words.data() + 8, &reach, count);
    EXPECT_TRUE(words.front() == 0x5A5A && words.back() == 0x5A5A);
    for (int32_t b = 0; b < 6 * count; ++b) {
      Take_Block(&row, words.data() + 8 + stripTables.offsets[b], reach.blocks[b], b % 6, done + b / 6);
    }
    done += count;
  }
  return row;
}

Row Decode(const Kernels& record, const Bytes& raw, int32_t columns) {
  return record.decodeStrip ? Decode_By_Strips(record, raw, columns) : Decode_By_Kernel(record.decodeRow, raw, columns);
}

struct HuffmanKernel : LevelTest<CodecTest> {
  ReferenceDecoder reference;
  Noise noise{3};
};
TEST_AT_EVERY_LEVEL(HuffmanKernel);

/** All levels of this processor at once: the reference takes the most time. */
struct HuffmanKernels : CodecTest, testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(Table, HuffmanKernels, testing::Range(0, 4));

TEST_P(HuffmanKernels, EveryPrefixOfSixteenBits) {
  // Luma DC, chroma DC, luma AC, chroma AC. Before chroma, empty luma blocks, 00 and 1010 each; before AC, DC values that take a
  // step of their own: the prefix is the first that the table is asked for.
  const char* const leads[] = {"", "001010001010001010001010", "111101000000", "001010001010001010001010111110100000"};
  const std::string lead = leads[GetParam()];
  ReferenceDecoder reference;
  Noise noise{3};
  const std::vector<NamedKernelLevel> levels = Test_Levels();
  for (uint32_t prefix = 0; prefix < 65536; ++prefix) {
    const std::string bits = lead + std::bitset<16>(prefix).to_string() + std::bitset<12>(noise.Next()).to_string() + "1111111";
    Bytes raw;
    for (size_t i = 0; i + 8 <= bits.size(); i += 8) {
      raw.push_back((uint8_t)std::bitset<8>(bits, i, 8).to_ulong());
      if (raw.back() == 0xFF) raw.push_back(0);
    }
    raw.insert(raw.end(), {0x28, 0xA2, 0x8A, 0, 0, 0x28});
    const Row expected = reference.Decode(raw, 2);
    for (const auto& [level, mask] : levels) {
      ASSERT_TRUE(Decode(Kernels_Select(mask), raw, 2) == expected) << level << " prefix " << prefix;
    }
  }
}

TEST_P(HuffmanKernel, AnyBytesMarkersStuffingAndEarlyEndsIncluded) {
  for (int round = 0; round < 6000; ++round) {
    const int32_t columns = noise.Between(1, 6), shape = round % 4;
    Bytes raw = noise.Some((size_t)noise.Between(0, 40 * columns));
    for (uint8_t& octet : raw) {
      const uint32_t dice = noise.Next() % 16;
      if (shape == 1 && dice < 6) octet = 0xFF;
      if (shape >= 1 && (dice == 7 || dice == 8)) octet = dice == 7 ? 0 : 0xD9;
      if (shape == 2 && dice > 8) octet = 0xFE;  // Long codes, and bits that are no code.
      if (shape == 3 && dice < 2) octet = 0xF9;
    }
    ASSERT_TRUE(Decode(record, raw, columns) == reference.Decode(raw, columns)) << "round " << round;
  }
  EXPECT_GT(reference.notCodes, 100);  // The noise reaches the rare cases that it is for.
  EXPECT_GT(reference.runsPastEnd, 100);
}

}  // namespace
