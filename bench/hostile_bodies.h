/* Frames made to decode slowly: entropy-coded data that no encoder writes, in the three wire forms. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

/** Entropy-coded data and the quality number of its frame. */
struct HostileBody {
  std::string name;
  int32_t quality;
  Bytes bytes;
};

/** All kinds of slow data, each cut to `count` bytes. good: the data of a good frame of quality 90. */
std::vector<HostileBody> Hostile_Bodies(size_t count, const Bytes& good);

/** Pseudo-random bytes, the same for the same seed. */
Bytes Random_Bytes(size_t count, uint32_t seed);

/* A body in each form. An FF D9 in the body would end a JFIF frame, so that form has FF D8 in its place. */

Bytes Compact_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body);
Bytes Prefixed_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body);
Bytes Jfif_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body);
