/* The kernel levels in tests and benchmarks. */
#pragma once

#include "kernels/cpu.h"

#include <vector>

/** True if this processor has the level and this build too. */
inline bool Has_Level(const NamedKernelLevel& level) { return (level.mask & ~Cpu_Levels()) == 0; }

/** Those that can run here. */
inline std::vector<NamedKernelLevel> Test_Levels() {
  std::vector<NamedKernelLevel> levels;
  for (const NamedKernelLevel& level : kernelLevels) {
    if (Has_Level(level)) levels.push_back(level);
  }
  return levels;
}
