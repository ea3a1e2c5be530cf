#include "decode/framing.h"

#include <algorithm>
#include <cstring>

/** A frame start, as the search finds it. */
struct Start {
  int32_t offset;  ///< -1 for none.
  bool isJfif, hasPrefix;
  int32_t wanted;  ///< Bytes missing after the JFIF start at which a strict search stopped.
};

static Start Find_Start(const uint8_t* data, int32_t count, bool strict) {
  int32_t i = 0;
  while (i < count - (CompactHeaderSize - 1)) {
    if (data[i] != 0xFF) {
      const void* const next = std::memchr(data + i, 0xFF, static_cast<size_t>(count - i));
      if (!next) break;
      i = static_cast<int32_t>(static_cast<const uint8_t*>(next) - data);
      continue;
    }
    const uint8_t* const p = data + i;
    if (p[1] != 0xD8) {
      i += 2;
      continue;
    }
    if (Compact_Header_At(p)) {
      if (i >= PrefixSize && Prefix_At(p - PrefixSize)) return {i - PrefixSize, false, true, 0};
      return {i, false, false, 0};
    }
    if (!JFIF_Start_At(p)) {
      i += 2;
      continue;
    }
    const int32_t missing = LeastJfifBytes - (count - i);
    if (missing > 0 && strict) return {-1, false, false, missing};
    if (missing <= 0 && JFIF_Markers_At(p, strict)) return {i, true, false, 0};
    ++i;
  }
  return {-1, false, false, 0};
}

int32_t Frame_Sync(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* hasPrefix) {
  const Start start = Find_Start(data, count, false);
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
  const Start start = Find_Start(data, count, true);
  *wanted = start.wanted;
  if (start.offset >= 0) *isJfif = start.isJfif;
  return start.offset;
}

int32_t Find_EOI(const uint8_t* data, int32_t count) {
  // By blocks, so that the time doesn't depend on the bytes: data may be full of FF.
  constexpr int32_t block = 64;
  int32_t i = 0;
  for (uint8_t found = 0; i < count - block; i += block) {
    for (int32_t j = i; j < i + block; ++j) found |= static_cast<uint8_t>((data[j] == 0xFF) & (data[j + 1] == 0xD9));
    if (found) break;
  }
  for (; i < count - 1; ++i) {
    if (data[i] == 0xFF && data[i + 1] == 0xD9) return i;
  }
  return -1;
}

int32_t Uncut_Length(const uint8_t* data, int32_t count, int32_t most) {
  if (count <= most) return count;
  const int32_t last = std::min(count - CompactHeaderSize, most + PrefixSize - 1);
  for (int32_t i = most - (LeastJfifBytes - 1); i <= last; ++i) {
    if (i < most && JFIF_Start_At(data + i)) return i;
    if (i + CompactHeaderSize <= most || !Compact_Header_At(data + i)) continue;
    const int32_t start = Prefix_At(data + i - PrefixSize) ? i - PrefixSize : i;
    if (start < most) return start;
  }
  return most;
}
