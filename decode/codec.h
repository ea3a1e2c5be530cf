/* The codec: the records of a compressed frame and of the buffers and tables that decode and encode it. It knows no window and no
 * stream; decode/decoder.h has those. */
#pragma once

#include "pixel/pictures.h"

#include <cstdint>

struct RowStore;            // decode/rows.h
struct WatermarkCollector;  // decode/watermark.h

/** Most macroblocks that a frame store can carry, at 4 bytes of entropy-coded data for each. */
constexpr int32_t MaxMacroblocks = 128000;
/** Bytes of the frame store; a longer frame is no frame. */
constexpr int32_t FrameStoreSize = 512000;

/** The compressed frame that is decoded, or that was encoded last. */
struct JdecFrameBuffer {
  uint8_t* data;     ///< FrameStoreSize bytes, owned.
  int32_t length;    ///< Bytes of the frame in data.
  int32_t position;  ///< Offset of the entropy-coded data.
};

/** Buffers and tables for frames of one size. A coefficient plane is a table of height / 8 pointers to rows of width / 8 blocks
 *  of 64 coefficients, each in natural order. */
struct JdecCodec {
  int32_t width, height;  ///< Size that the buffers are made for.
  int32_t quality;        ///< Quality that the six tables are built for.
  JdecRaster* raster;     ///< Target of the converters. The caller's: Codec_Free doesn't free it.
  JdecPlanes* planes;     ///< Output of the inverse transform, 4:2:0. The caller's too.
  int32_t** coefY;        ///< Full size. The row pipeline uses only what lies below the last macroblock row.
  int32_t** coefCb;       ///< Half width and half height, like coefCr.
  int32_t** coefCr;
  uint16_t* lumaQuant;  ///< This and the next five: 64 entries, natural order.
  uint16_t* chromaQuant;
  int16_t* lumaForward;
  int16_t* chromaForward;
  int16_t* lumaInverse;
  int16_t* chromaInverse;
  JdecFrameBuffer* frame;
  uint32_t bitBuffer;    ///< This and bitCount: the state in which Huff_Decode_Frame left its bit reader. The row pipeline has
  int32_t bitCount;      ///< its own reader (decode/rows.h) and changes neither these two nor streamPtr and streamCount.
  uint32_t writeBuffer;  ///< Accumulator of the Huffman encoder; empty after each frame.
  int32_t writeCount;
  uint8_t* streamPtr;             ///< Position in frame->data after what Huff_Decode_Frame has read or the encoder has written.
  int32_t streamCount;            ///< Bytes read or written up to there.
  RowStore* rows;                 ///< Buffers of the row pipeline, owned.
  WatermarkCollector* watermark;  ///< Hidden text of the frame decoded last, owned.
};

/** True if a picture of that size can be decoded: sides 1 to MaxPictureSide, at most MaxMacroblocks macroblocks and
 *  MaxMacroblocks * 256 pixels. */
bool Picture_Size_Allowed(int32_t width, int32_t height);

/** Makes a zero-filled coefficient plane for samples of that size. Null without memory. */
int32_t** Coef_Plane_New(int32_t width, int32_t height);

/** Frees a coefficient plane. Null is allowed. */
void Coef_Plane_Free(int32_t** plane);

/** Makes a codec for that size, without raster and planes. Its quality is 25, but no tables are built for it yet. Null without
 *  memory; nothing stays allocated then. */
JdecCodec* Codec_New(int32_t width, int32_t height);

/** Frees a codec with all it owns except raster and planes. Null is allowed. */
void Codec_Free(JdecCodec* codec);

/** Sets the quality and builds the six tables for it. Does nothing if the codec has that quality already. */
void Codec_Set_Quality(JdecCodec* codec, int32_t quality);
