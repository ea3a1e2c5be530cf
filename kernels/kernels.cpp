#include "kernels/kernels.h"

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

#if defined(__i386__) || defined(__x86_64__)

static void Overlay_Sse2(Kernels* record) {
  Overlay_Convert_Sse2(record);
  Overlay_Dither_Sse2(record);
  Overlay_Unstuff_Sse2(record);
  Overlay_Entropy_Sse2(record);
  Overlay_Strip_Transform_Sse2(record);
  Overlay_To_Planes_Sse2(record);
  Overlay_Encode_Sse2(record);
}

static void Overlay_Avx2(Kernels* record) {
  Overlay_Convert_Avx2(record);
  Overlay_Dither_Avx2(record);
  Overlay_Unstuff_Avx2(record);
  Overlay_Entropy_Avx2(record);
  Overlay_Strip_Transform_Avx2(record);
  Overlay_To_Planes_Avx2(record);
  Overlay_Encode_Avx2(record);
}

Kernels Kernels_Select(uint32_t mask) {
  Kernels record = plainKernels;
  if (mask & KernelSse2) Overlay_Sse2(&record);
  if (mask & KernelAvx2) Overlay_Avx2(&record);
  return record;
}

#else

Kernels Kernels_Select(uint32_t /*mask*/) { return plainKernels; }

#endif
