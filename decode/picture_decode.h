/* The frame in a codec's store to samples and pixels, by the pipeline that the kernels have. */
#pragma once

#include "decode/codec.h"
#include "pixel/convert.h"

/** What becomes of a frame's samples. */
struct PictureTarget {
  JdecRaster* raster;  ///< Of the codec's size; not touched without a format.
  int32_t format;      ///< A PixelFormat of the raster's depth; NoPixels: the planes are all that is wanted.
  int32_t ditherMode;  ///< A DitherMode, for palette indices.
  RasterUse use;
};
constexpr int32_t NoPixels = -1;

/** Decodes the frame in the store, whose header is read (position set, quality and size the codec's own), into the codec's planes
 *  and the target. Missing data reads as zero bits, so that all samples are written. The codec's watermark holds the frame's
 *  hidden text afterwards. */
void Decode_Picture(JdecCodec* codec, const PictureTarget& target);
