/* The kernel levels that the tests run: those of this processor. */
#pragma once

#include "kernels/cpu.h"

#include <vector>

inline std::vector<NamedKernelLevel> Test_Levels() {
  std::vector<NamedKernelLevel> levels;
  for (const NamedKernelLevel& level : kernelLevels) {
    if ((level.mask & ~Cpu_Levels()) == 0) levels.push_back(level);
  }
  return levels;
}
