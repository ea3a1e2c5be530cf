#include "kernels/cpu.h"

#if defined(__i386__) || defined(__x86_64__)
uint32_t Cpu_Levels() {
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("sse2")) return KernelPlain;
  // All processors with AVX2 but a few have the bit operations as well; the level takes both or neither.
  const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
  return avx2 ? KernelSse2 | KernelAvx2 : KernelSse2;
}
#else
uint32_t Cpu_Levels() { return KernelPlain; }
#endif
