#include "decode/framing.h"

#include <cstring>

/* Offsets within a JFIF frame's fixed head. */
static constexpr int32_t JfifDqt = 20, JfifFirstQuantiser = 25, JfifSof = 158, JfifHeight = 163, JfifWidth = 165, JfifSos = 609;
/** The SOS marker and its segment. */
static constexpr int32_t SosSize = 14;

/* Offsets within a compact head. */
static constexpr int32_t CompactBodyLength = 2, CompactWidth = 4, CompactHeight = 6, CompactQuality = 8, CompactEoi = 10;

static int32_t Little_Word(const uint8_t* p) { return p[0] | p[1] << 8; }
static int32_t Big_Word(const uint8_t* p) { return p[0] << 8 | p[1]; }
static bool Marker_At(const uint8_t* p, uint8_t code) { return p[0] == 0xFF && p[1] == code; }

static bool Compact_Head_At(const uint8_t* p) { return p[1] == 0xD8 && Marker_At(p + CompactEoi, 0xD9); }

static bool Jfif_Candidate_At(const uint8_t* p) {
  static constexpr uint8_t start[10] = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F', 'I', 'F'};
  return std::memcmp(p, start, sizeof start) == 0;
}

static bool Prefix_At(const uint8_t* p) { return p[0] == 0xF6 && p[2] == 0xFF && p[4] == 0xF9 && p[6] == 0xDD && p[12] == 0xC5; }

/** What a walk over the bytes came to. */
struct Start {
  int32_t offset;  ///< -1 for none.
  bool isJfif, hasPrefix;
  int32_t wanted;  ///< Bytes that a strict walk lacked at a JFIF start.
};

static Start Walk(const uint8_t* data, int32_t count, bool strict) {
  int32_t i = 0;
  while (i < count - (CompactHeadSize - 1)) {
    if (data[i] != 0xFF) {
      const void* const next = std::memchr(data + i, 0xFF, static_cast<size_t>(count - i));
      if (!next) break;
      i = static_cast<int32_t>(static_cast<const uint8_t*>(next) - data);
      continue;
    }
    const uint8_t* const p = data + i;
    if (Compact_Head_At(p)) {
      if (i >= PrefixSize && Prefix_At(p - PrefixSize)) return {i - PrefixSize, false, true, 0};
      return {i, false, false, 0};
    }
    if (!Jfif_Candidate_At(p)) {
      i += 2;
      continue;
    }
    const int32_t missing = LeastJfifBytes - (count - i);
    if (missing > 0 && strict) return {-1, false, false, missing};
    if (missing <= 0 && Marker_At(p + JfifSof, 0xC0) && Marker_At(p + JfifDqt, 0xDB) &&
        (!strict || Marker_At(p + JfifSos, 0xDA))) {
      return {i, true, false, 0};
    }
    ++i;
  }
  return {-1, false, false, 0};
}

int32_t Frame_Sync(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* hasPrefix) {
  const Start start = Walk(data, count, false);
  if (start.offset < 0) return -1;
  *isJfif = start.isJfif;
  *hasPrefix = start.hasPrefix;
  return start.offset;
}

int32_t Frame_Sync_Strict(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* wanted) {
  *wanted = 0;
  if (count < LeastSearchBytes) {
    *wanted = LeastSearchBytes;
    return -1;
  }
  const Start start = Walk(data, count, true);
  *wanted = start.wanted;
  if (start.offset >= 0) *isJfif = start.isJfif;
  return start.offset;
}

int32_t Find_EOI(const uint8_t* data, int32_t count) {
  // Block by block, so that the time is the same whatever the bytes are: data may be full of FF.
  constexpr int32_t block = 64;
  int32_t i = 0;
  for (uint8_t found = 0; i < count - block; i += block) {
    for (int32_t j = i; j < i + block; ++j) found |= static_cast<uint8_t>((data[j] == 0xFF) & (data[j + 1] == 0xD9));
    if (found) break;
  }
  for (; i < count - 1; ++i) {
    if (Marker_At(data + i, 0xD9)) return i;
  }
  return -1;
}

int32_t Parse_JFIF_Header(const uint8_t* data, int32_t* width, int32_t* height, int32_t* quality) {
  if (!Marker_At(data + JfifSof, 0xC0) || !Marker_At(data + JfifDqt, 0xDB)) return 0;
  *height = Big_Word(data + JfifHeight);
  *width = Big_Word(data + JfifWidth);
  // Undoes the scaling of the first luma quantiser, which is 16 at quality 50. A zero byte is no quantiser; it gives quality 100.
  const int32_t scale = data[JfifFirstQuantiser] * 100 / 16;
  *quality = scale > 100 ? 5000 / scale : (200 - scale) / 2;
  return 1;
}

int32_t Find_Scan_Data(const uint8_t* data) {
  for (int32_t i = 0; i < JfifHeadSize; ++i) {
    if (Marker_At(data + i, 0xDA)) return i + SosSize;
  }
  return -1;
}

int32_t Compact_Length(const uint8_t* data) { return Little_Word(data + CompactBodyLength) + CompactHeadSize; }

int64_t Prefixed_Length(const uint8_t* data) {
  const int32_t low = Compact_Length(data + PrefixSize) & 0xFFFF;
  return int64_t{PrefixSize} + low + (int64_t{data[3]} << 16) + (int64_t{data[1]} << 24);
}

void Parse_Compact_Header(const uint8_t* data, int32_t* width, int32_t* height, int32_t* quality) {
  *width = Little_Word(data + CompactWidth);
  *height = Little_Word(data + CompactHeight);
  *quality = data[CompactQuality];
}
