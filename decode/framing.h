/* Where frames start and end in a stream. Searches never read past data + count. */
#pragma once

#include "decode/frame_header.h"

#include <cstdint>

/** Prefix and compact header: with fewer bytes a search is not begun. */
constexpr int32_t LeastSearchBytes = PrefixSize + CompactHeaderSize;

/** Finds the first frame start. A JFIF start with fewer than LeastJfifBytes behind it is passed over. Gives its offset (that of
 *  the prefix for a prefixed frame) and says which form it has; or -1, with the out fields as they were. */
int32_t Frame_Sync(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* hasPrefix);

/** Finds the first frame start, but stops at a JFIF start that needs more bytes: gives -1 then and stores in `wanted` how many
 *  are missing (26 if count is below that). `wanted` is 0 in all other cases. Also asks for the SOS marker at its place. */
int32_t Frame_Sync_Strict(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* wanted);

/** Offset of the first FF D9, or -1. */
int32_t Find_EOI(const uint8_t* data, int32_t count);
