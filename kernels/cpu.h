/* The kernel levels: their names, and which of them the processor, the system and this build have. */
#pragma once

#include "kernels/kernels.h"

/** Levels, to be combined into a mask. Plain needs no bit. cmake/kernels.cmake lists the same bits. */
enum KernelLevel : uint32_t { KernelPlain = 0, KernelSse2 = 1, KernelAvx2 = 2 };

/** A level by the name that the tool and the tests give it. */
struct NamedKernelLevel {
  const char* name;
  uint32_t mask;  ///< The level with all levels below it.
};

/** In rising order. */
inline constexpr NamedKernelLevel kernelLevels[] = {
    {"plain", KernelPlain}, {"sse2", KernelSse2}, {"avx2", KernelSse2 | KernelAvx2}};

/** Mask of the levels that are compiled into this build and that processor and system can run. For AVX2 the system must keep its
 *  registers. */
uint32_t Cpu_Levels();

/** Mask of the levels that are compiled into this build: those of the target's architecture. */
extern const uint32_t kernelsBuilt;

/** Mask of the levels that JDEC_Init may choose. All, but in a build for testing a lower level through the exports. */
extern const uint32_t kernelsAllowed;
