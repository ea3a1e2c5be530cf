/* From a packed picture to quantised coefficients: the first half of the still encoder's plain pipeline. */
#pragma once

#include "pixel/pictures.h"

/** Converts a raster of 24 bits into 4:4:4 planes of the same size. */
void RGB_To_YCC444(const JdecRaster* raster, JdecPlanes* planes);

/** Reduces 4:4:4 planes to 4:2:0 planes of the same picture size. */
void Downsample_Planes(const JdecPlanes* source, JdecPlanes* target);

/** Copies a plane of width by height, or, if lumaFactor / chromaFactor is 4, averages its blocks of 2x2 samples. The rounding
 *  alternates down each column of averages and on into the next one. */
void Downsample_Plane(uint8_t** target, uint8_t* const* source, int32_t width, int32_t height, int32_t lumaFactor,
                      int32_t chromaFactor);

/** Transforms and quantises the whole blocks of a plane of width by height samples. */
void Forward_DCT_Plane(uint8_t** rows, int32_t** plane, int32_t width, int32_t height, const int16_t* forward,
                       const int16_t* inverse);
