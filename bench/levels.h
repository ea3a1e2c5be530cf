/* A kernel's benchmark at each level of this processor; a new level or kernel needs no list here. */
#pragma once

#include "kernels/kernels.h"
#include "tests/support/levels.h"

#include <benchmark/benchmark.h>
#include <string>

/** Registers "NAME/LEVEL" for each level that has its own kernel for this entry of the record. `run` gets that kernel.
 *  Returns true, to initialise the variable that calls it. */
template <typename Kernel, typename Run>
bool Bench_Levels(const char* name, Kernel Kernels::*entry, Run run) {
  Kernel below = nullptr;
  for (const NamedKernelLevel& level : Test_Levels()) {
    const Kernel kernel = Kernels_Select(level.mask).*entry;
    if (kernel == below) continue;
    below = kernel;
    const std::string full = std::string(name) + "/" + level.name;
    benchmark::RegisterBenchmark(full.c_str(), [run, kernel](benchmark::State& state) { run(state, kernel); });
  }
  return true;
}
