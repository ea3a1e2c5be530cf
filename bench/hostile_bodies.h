/* Frames made to be slow: entropy-coded data that no encoder writes, and the three wire forms around it. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

/** Entropy-coded data and the quality number that goes with it. */
struct HostileBody {
  std::string name;
  int32_t quality;
  Bytes bytes;
};

/** All kinds of data that can be made slow, each cut to that many bytes. good: the data of a good frame of quality 90. */
std::vector<HostileBody> Hostile_Bodies(size_t count, const Bytes& good);

/** Bytes that a generator with that seed gives. */
Bytes Random_Bytes(size_t count, uint32_t seed);

/* The forms around it. Where a body holds an FF D9, which ends a JFIF frame, that form has FF D8. */

Bytes Compact_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body);
Bytes Prefixed_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body);
Bytes Jfif_Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body);
