/* Where a frame starts and how long it is, in each of the three wire forms:
 *
 *   compact   a head of 12 bytes, FF D8 .. FF D9, little-endian fields, and the entropy-coded data
 *   prefixed  a prefix of 14 bytes with a signature and the high half of the length, then a compact frame
 *   JFIF      a JPEG image whose markers all stand at fixed offsets; it ends at the first FF D9
 *
 * Searches never read past data + count. */
#pragma once

#include <cstdint>

constexpr int32_t CompactHeadSize = 12;
constexpr int32_t PrefixSize = 14;
/** Prefix and compact head: with fewer bytes a search is not begun. */
constexpr int32_t LeastSearchBytes = PrefixSize + CompactHeadSize;
constexpr int32_t JfifHeadSize = 623;
/** Fixed head and end marker. */
constexpr int32_t LeastJfifBytes = JfifHeadSize + 2;

/** Finds the first frame start. A JFIF start with fewer than LeastJfifBytes behind it is passed over. Gives its offset (that of
 *  the prefix for a prefixed frame) and says which form it has; or -1, with the out fields as they were. */
int32_t Frame_Sync(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* hasPrefix);

/** Finds the first frame start, but stops at a JFIF start that needs more bytes: gives -1 then and stores in `wanted` how many
 *  are missing (26 if count is below that). `wanted` is 0 in all other cases. Also asks for the SOS marker at its place. */
int32_t Frame_Sync_Strict(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* wanted);

/** Offset of the first FF D9, or -1. */
int32_t Find_EOI(const uint8_t* data, int32_t count);

/** Reads size and quality of a JFIF frame of at least LeastJfifBytes. Gives 1, or 0 when its markers are not in their places. */
int32_t Parse_JFIF_Header(const uint8_t* data, int32_t* width, int32_t* height, int32_t* quality);

/** Offset of the entropy-coded data of a JFIF frame of at least LeastJfifBytes, or -1. */
int32_t Find_Scan_Data(const uint8_t* data);

/** Bytes of the compact frame whose head stands at data. */
int32_t Compact_Length(const uint8_t* data);

/** Bytes of the prefixed frame at data, prefix included. The low half wraps at 65536. */
int64_t Prefixed_Length(const uint8_t* data);

/** Size and quality from a compact head at data. */
void Parse_Compact_Header(const uint8_t* data, int32_t* width, int32_t* height, int32_t* quality);
