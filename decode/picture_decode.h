/* From the frame in a codec's store to samples and pixels. Both pipelines give the same; the row pipeline is used if the
 * processor has its kernels. */
#pragma once

#include "decode/codec.h"
#include "pixel/convert.h"

/** How a frame's samples are converted. */
struct PictureTarget {
  JdecRaster* raster;  ///< Of the codec's size; not used with NoPixels.
  int32_t format;      ///< A PixelFormat of the raster's depth, or NoPixels: the planes are filled and nothing is converted.
  int32_t ditherMode;  ///< A DitherMode, for palette indices.
  RasterUse use;
};
constexpr int32_t NoPixels = -1;

/** Decodes the frame in the store into the codec's planes and the target. Its header must have been read: `position` is set, and
 *  size and quality are the codec's. Missing data reads as zero bits, so that all samples are written. The codec's watermark then
 *  holds the frame's hidden text. */
void Decode_Picture(JdecCodec* codec, const PictureTarget& target);
