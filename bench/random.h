/* A small generator of numbers, the same everywhere. */
#pragma once

#include <cstdint>

struct Random {
  uint32_t state = 1;
  uint32_t Next() { return (state = state * 1664525 + 1013904223) >> 8; }
  uint32_t Below(uint32_t limit) { return Next() % limit; }
};
