/* The kernel levels that the tests run. A new level is a new entry. */
#pragma once

#include "kernels/kernels.h"

inline constexpr uint32_t testLevels[] = {KernelPlain};
