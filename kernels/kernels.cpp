#include "kernels/kernels.h"

#include "kernels/cpu.h"

/* Mask of the compiled levels, as cmake/kernels.cmake gives it. Without it only the plain kernels are known to be there. */
#ifndef VELARTO_KERNEL_LEVELS
#define VELARTO_KERNEL_LEVELS 0
#endif

const uint32_t kernelsBuilt = VELARTO_KERNEL_LEVELS;

static constexpr bool Is_Built(KernelLevel level) { return (VELARTO_KERNEL_LEVELS & level) != 0; }

static void End_Stream_Plain() {}

static constexpr Kernels plainKernels = {
    .decodeRow = Decode_Row_Plain,
    .idctRow = Idct_Row_Plain,
    .idctRowPacked = Idct_Row_Packed_Plain,
    .toRgb24 = To_Rgb24_Plain,
    .toRgb32 = To_Rgb32_Plain,
    .toRgb565 = To_Rgb565_Plain,
    .toRgb555 = To_Rgb555_Plain,
    .toRgb24Stream = To_Rgb24_Plain,
    .toRgb32Stream = To_Rgb32_Plain,
    .endStream = End_Stream_Plain,
    .ditherRow = Dither_Row_Plain,
    .toYccRow = To_Ycc_Row_Plain,
    .downsampleRow = Downsample_Row_Plain,
    .forwardRow = Forward_Row_Plain,
    .unstuff = nullptr,
    .decodeStrip = nullptr,
    .transformStrip = nullptr,
    .toPlanes = nullptr,
    .encodeRow = nullptr,
};

constinit Kernels kernels = plainKernels;

/* A level that isn't compiled has no functions to refer to: what stands under such a condition is dropped. */
Kernels Kernels_Select(uint32_t mask) {
  Kernels record = plainKernels;
  if constexpr (Is_Built(KernelSse2)) {
    if (mask & KernelSse2) {
      Use_Convert_Sse2(&record);
      Use_Dither_Sse2(&record);
      Use_Unstuff_Sse2(&record);
      Use_Entropy_Sse2(&record);
      Use_Strip_Transform_Sse2(&record);
      Use_To_Planes_Sse2(&record);
      Use_Encode_Sse2(&record);
    }
  }
  if constexpr (Is_Built(KernelAvx2)) {
    if (mask & KernelAvx2) {
      Use_Convert_Avx2(&record);
      Use_Dither_Avx2(&record);
      Use_Unstuff_Avx2(&record);
      Use_Entropy_Avx2(&record);
      Use_Strip_Transform_Avx2(&record);
      Use_To_Planes_Avx2(&record);
      Use_Encode_Avx2(&record);
    }
  }
  return record;
}
