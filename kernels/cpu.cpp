#include "kernels/cpu.h"

static constexpr int64_t UnknownCacheBytes = 4 << 20;

#if defined(__i386__) || defined(__x86_64__)

#include <cpuid.h>

uint32_t Cpu_Levels() {
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("sse2")) return KernelPlain;
  // All processors with AVX2 but a few have the bit operations as well; the level takes both or neither.
  const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
  return avx2 ? KernelSse2 | KernelAvx2 : KernelSse2;
}

/** The largest of the caches that a leaf lists, one a subleaf; 0 without that leaf. */
static int64_t Largest_Cache(uint32_t leaf) {
  int64_t largest = 0;
  uint32_t a, b, c, d;
  for (uint32_t i = 0; i < 8 && __get_cpuid_count(leaf, i, &a, &b, &c, &d) && (a & 31) != 0; ++i) {
    const int64_t ways = (b >> 22) + 1, partitions = (b >> 12 & 1023) + 1, line = (b & 4095) + 1,
                  sets = static_cast<int64_t>(c) + 1;
    const int64_t bytes = ways * partitions * line * sets;
    if (bytes > largest) largest = bytes;
  }
  return largest;
}

int64_t Cpu_Cache_Bytes() {
  constexpr uint32_t cacheLeaves[] = {4, 0x8000001D};  // Intel's and AMD's, of one form.
  for (const uint32_t leaf : cacheLeaves) {
    if (const int64_t bytes = Largest_Cache(leaf)) return bytes;
  }
  return UnknownCacheBytes;
}

#else

uint32_t Cpu_Levels() { return KernelPlain; }

int64_t Cpu_Cache_Bytes() { return UnknownCacheBytes; }

#endif
