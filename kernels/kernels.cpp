#include "kernels/kernels.h"

Kernels kernels = Kernels_Select(KernelPlain);

Kernels Kernels_Select([[maybe_unused]] uint32_t mask) {
  return {
      .decodeRow = Decode_Row_Plain,
      .idctRow = Idct_Row_Plain,
      .idctRowPacked = Idct_Row_Packed_Plain,
      .toRgb24 = To_Rgb24_Plain,
      .toRgb32 = To_Rgb32_Plain,
      .toRgb565 = To_Rgb565_Plain,
      .toRgb555 = To_Rgb555_Plain,
      .ditherRow = Dither_Row_Plain,
      .toYccRow = To_Ycc_Row_Plain,
      .downsampleRow = Downsample_Row_Plain,
      .forwardRow = Forward_Row_Plain,
  };
}
