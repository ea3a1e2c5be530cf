/* The two forms of a picture: planes of samples, and packed pixels. Each is one block of memory, freed by Arena_Free. */
#pragma once

#include <cstdint>

/** Largest width and height of a picture. */
constexpr int32_t MaxPictureSide = 65535;

/** Planar YCbCr picture, reached through tables of row pointers; row 0 is the top. Record, tables and samples are one block. */
struct JdecPlanes {
  int32_t lumaFactor;    ///< 4.
  int32_t chromaFactor;  ///< 4: chroma of full size. 1: chroma of half width and half height, rounded down.
  int32_t yWidth, yHeight;
  uint8_t** yRows;
  int32_t crWidth, crHeight;
  uint8_t** crRows;
  int32_t cbWidth, cbHeight;
  uint8_t** cbRows;
};

/** Packed picture. Record, row table and pixels are one block. In memory the bottom row is first; rows[0] is the top row. */
struct JdecRaster {
  int32_t width, height;
  int32_t bitsPerPixel;
  int32_t pitch;   ///< Bytes of a row: width times bytes per pixel, without padding.
  uint8_t** rows;  ///< height pointers.
};

/** Makes a zero-filled raster, its pixels at a multiple of 64 bytes; bitsPerPixel is a multiple of 8. Null without memory. */
JdecRaster* Raster_New(int32_t width, int32_t height, int32_t bitsPerPixel);

/** Makes planes, not cleared. Factors 4 and 4: chroma of full size; 4 and 1: of half width and height. Null without memory. */
JdecPlanes* Planes_New(int32_t width, int32_t height, int32_t lumaFactor, int32_t chromaFactor);

/** Fills planes with the dark picture: luma 0, chroma 127. */
void Planes_Darken(JdecPlanes* planes);
