/* Where frames start and end in a stream. Searches never read past data + count. */
#pragma once

#include "decode/frame_header.h"

#include <cstdint>

/** Bytes of a prefix and a compact header. The receive paths don't search in fewer. */
constexpr int32_t LeastSearchBytes = PrefixSize + CompactHeaderSize;

/** Finds the first frame start and its form. A JFIF start with fewer than LeastJfifBytes from there on is skipped. Gives its
 *  offset, for a prefixed frame that of the prefix; or -1, with the out fields unchanged. */
int32_t Frame_Sync(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* hasPrefix);

/** The same, but stops at a JFIF start with fewer than LeastJfifBytes from there on: gives -1 and stores in `wanted` how many
 *  are missing. With count below LeastSearchBytes it gives -1 and stores LeastSearchBytes. In all other cases `wanted` is 0. A
 *  JFIF start must also have its SOS marker at the fixed offset. */
int32_t Frame_Sync_Strict(const uint8_t* data, int32_t count, int32_t* isJfif, int32_t* wanted);

/** Offset of the first FF D9, or -1. */
int32_t Find_EOI(const uint8_t* data, int32_t count);

/** Where to cut `count` bytes that can't be taken at once: the largest offset up to `most` that cuts no frame's header, nor a
 * JFIF header off its first two bytes of data; count if that is not above `most`, which must be at least LeastJfifBytes. */
int32_t Uncut_Length(const uint8_t* data, int32_t count, int32_t most);
