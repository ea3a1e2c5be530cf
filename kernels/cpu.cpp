#include "kernels/cpu.h"

/** What processor and system can run, compiled in or not. */
static uint32_t Processor_Levels() {
#if defined(__i386__) || defined(__x86_64__)
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("sse2")) return KernelPlain;
  // Nearly all processors with AVX2 have the bit operations as well; the level takes both or neither.
  const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
  return avx2 ? KernelSse2 | KernelAvx2 : KernelSse2;
#else
  return KernelPlain;
#endif
}

uint32_t Cpu_Levels() { return Processor_Levels() & kernelsBuilt; }
