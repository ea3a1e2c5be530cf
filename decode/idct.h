/* The inverse transform of coefficient planes, in the plain pipeline. */
#pragma once

#include <cstdint>

/** Not 0: the packed 16-bit form of the transform is used, in the plain pipeline. 0 at start; nothing in the library sets it. */
extern int32_t useMmxIdct;

/** Transforms the whole blocks of a plane of width by height samples into the sample rows. table: the inverse table of the
 *  plane's component. */
void IDCT_Plane(uint8_t** rows, int32_t* const* plane, int32_t width, int32_t height, const int16_t* table);
