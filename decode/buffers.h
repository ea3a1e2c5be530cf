/* Memory blocks, and the pictures carved from them. */
#pragma once

#include "decode/decoder.h"

/** Without an arena, gives a block of `size` bytes from the heap, not cleared, or null; the caller frees it with Arena_Free.
 *  With an arena (the address of a byte pointer) gives that pointer and moves it on by `size`; such a piece goes with its
 *  block. */
void* Arena_Alloc(size_t size, uint8_t** arena);

/** Arena_Alloc from the heap, zero-filled. */
void* Arena_Alloc_Zeroed(size_t size);

/** Frees a block from the heap. Null is allowed. */
void Arena_Free(void* block);

/** Makes a zero-filled raster, its pixels at a multiple of 64 bytes; bitsPerPixel a multiple of 8. Gives null when memory can't
 * be had. Freed by Arena_Free. */
JdecRaster* Raster_New(int32_t width, int32_t height, int32_t bitsPerPixel);

/** Makes planes of undefined content. Factors 4, 4: chroma of full size; 4, 1: of half width and height. Gives null when memory
 *  can't be had. Freed by Arena_Free. */
JdecPlanes* Planes_New(int32_t width, int32_t height, int32_t lumaFactor, int32_t chromaFactor);

/** Fills planes with the dark picture: luma 0, chroma 127. */
void Planes_Darken(JdecPlanes* planes);

/** Makes a zero-filled coefficient plane. Gives null when memory can't be had. */
int32_t** Coef_Plane_New(int32_t width, int32_t height);

/** Frees a coefficient plane. Null is allowed. */
void Coef_Plane_Free(int32_t** plane);

/** Bits per pixel that the decoder's raster must have: 24 when headless, otherwise those of the screen; 24 too when the screen
 *  has none of the known depths. */
int32_t Raster_Depth(int32_t headless);

/** Makes raster and planes of the decoder's size, the planes dark, and puts them into its codec in place of the old ones,
 *  which are freed. Gives 1; or 0 with nothing changed when memory can't be had. */
int32_t Build_Rasters(JdecDecoder* decoder);

/** Frees the codec's raster and planes and nulls both. */
void Free_Rasters(JdecDecoder* decoder);
