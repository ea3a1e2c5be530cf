/* What the processor and the system allow. */
#pragma once

#include "kernels/kernels.h"

/** A level by the name that the tool and the tests give it, with all levels below it in its mask. */
struct NamedKernelLevel {
  const char* name;
  uint32_t mask;
};

/** In rising order. */
inline constexpr NamedKernelLevel kernelLevels[] = {
    {"plain", KernelPlain}, {"sse2", KernelSse2}, {"avx2", KernelSse2 | KernelAvx2}};

/** Mask of the levels that this processor and this system can run: for AVX2 the system must keep its registers. */
uint32_t Cpu_Levels();

/** Bytes of the processor's largest cache; 4 MB where it does not tell. */
int64_t Cpu_Cache_Bytes();

/** Mask of the levels that this build lets JDEC_Init choose. All; a build with fewer is what tests a lower level from outside. */
extern const uint32_t kernelsAllowed;
