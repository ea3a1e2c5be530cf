/* Two rows of pixels to planes, at every vector level. Before this file a level defines Step, a number of pixels; Bias, and
 * Bias_Of(even, odd); Convert_Step, which converts Step pixels of both rows and touches nothing else. */

/** Where the next two rows probably are, judging by the distance of these two. Those of a large picture are not in the cache. */
typedef struct {
  uintptr_t upper, lower, yUpper, yLower;
} Ahead;

static inline void Fetch(const Ahead* ahead, uintptr_t i) {
  for (uintptr_t byte = 3 * i; byte < 3 * i + 3 * Step; byte += 64) {
    __builtin_prefetch((const void*)(ahead->upper + byte), 0);
    __builtin_prefetch((const void*)(ahead->lower + byte), 0);
  }
  __builtin_prefetch((const void*)(ahead->yUpper + i), 1);
  __builtin_prefetch((const void*)(ahead->yLower + i), 1);
}

static inline void Convert_Rows(const uint8_t* upper, const uint8_t* lower, uint8_t* yUpper, uint8_t* yLower, uint8_t* cb,
                                uint8_t* cr, int32_t count, int32_t evenBias, int32_t oddBias) {
  const Bias bias = Bias_Of(evenBias, oddBias);
  ptrdiff_t i = 0;
  const Ahead ahead = {2 * (uintptr_t)lower - (uintptr_t)upper, 3 * (uintptr_t)lower - 2 * (uintptr_t)upper,
                       2 * (uintptr_t)yLower - (uintptr_t)yUpper, 3 * (uintptr_t)yLower - 2 * (uintptr_t)yUpper};
  for (; i + Step <= count; i += Step) {
    Fetch(&ahead, (uintptr_t)i);
    Convert_Step(upper + 3 * i, lower + 3 * i, yUpper + i, yLower + i, cb + i / 2, cr + i / 2, bias);
  }
  const size_t remaining = (size_t)(count - i);
  if (remaining == 0) return;
  uint8_t pixels[2][3 * Step] = {}, luma[2][Step], chroma[2][Step / 2];
  __builtin_memcpy(pixels[0], upper + 3 * i, 3 * remaining);
  __builtin_memcpy(pixels[1], lower + 3 * i, 3 * remaining);
  Convert_Step(pixels[0], pixels[1], luma[0], luma[1], chroma[0], chroma[1], bias);
  __builtin_memcpy(yUpper + i, luma[0], remaining);
  __builtin_memcpy(yLower + i, luma[1], remaining);
  __builtin_memcpy(cb + i / 2, chroma[0], remaining / 2);
  __builtin_memcpy(cr + i / 2, chroma[1], remaining / 2);
}
