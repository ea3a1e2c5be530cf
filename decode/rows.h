/* The row pipeline: from a frame's bytes to its samples by macroblock rows, without the coefficients of the whole frame. Its
 * samples are the same as those of the plain pipeline, Huff_Decode_Frame and IDCT_Plane (huffman_decode.h, idct.h). */
#pragma once

#include "decode/codec.h"
#include "kernels/kernels.h"

/** Tables and buffers of the row pipeline, one for each codec. */
struct RowStore {
  StripQuant luma, chroma;
  int16_t* blocks;  ///< The blocks of a strip, zero between two strips; at a multiple of 64 bytes.
  StripReach reach;
  uint8_t* data;  ///< The frame's entropy-coded data without stuffing, as far as it was needed.
};

/** Makes a store without tables. Null without memory. */
RowStore* Row_Store_New();
/** Frees a store. Null is allowed. */
void Row_Store_Free(RowStore* store);

/** Sets the tables from the codec's inverse tables. */
void Row_Store_Set_Tables(RowStore* store, const int16_t* lumaInverse, const int16_t* chromaInverse);

/** True if frames go through this pipeline: the processor has its kernels, and the packed transform is not asked for. */
bool Rows_Available();

/** Whether a strip has data. After the end of the data all bits are 0, so that all blocks of a component are the same: they are
 *  decoded once and repeated. */
enum class MissingData : uint8_t {
  No,          ///< The strip has data.
  FirstStrip,  ///< It is the first one without; it is decoded, and its blocks and samples are kept.
  LaterStrip,  ///< Its blocks and samples are copies of those.
};

/** The decoding of a frame by this pipeline. */
struct RowsRun {
  JdecCodec* codec;
  const uint8_t *stuffed, *stuffedEnd;  ///< The data that the reader doesn't have yet.
  StripReader reader;
  int32_t predictors[3];
  uint8_t* rows[32];    ///< Where the next samples are written: 16 rows of luma, 8 of Cb, 8 of Cr.
  int32_t row, column;  ///< Macroblocks done: whole rows, and in the next row.
  int32_t strip;        ///< Macroblocks of the strip that is decoded and not yet transformed.
  MissingData missing;
  int32_t missingScan[64];         ///< The hidden-text positions of a luma block without data.
  uint8_t missingSamples[24 * 8];  ///< The samples of a block without data: of luma, Cb and Cr.
};

/** Begins with the frame in the codec's store, which must have the codec's size. */
void Rows_Open(RowsRun* run, JdecCodec* codec);
/** Decodes the next strip. False if there is none. */
bool Rows_Decode_Strip(RowsRun* run);
/** Transforms that strip. True if it completes a macroblock row. */
bool Rows_Transform_Strip(RowsRun* run);
/** Ends the frame with the samples below the last macroblock row. The codec's watermark then holds the frame's hidden text. */
void Rows_Close(RowsRun* run);

/** What is done with each macroblock row while its samples are in the cache, and at the end with the rows below the last one. */
struct RowsTaker {
  /** Takes `pairs` pairs of picture rows from pair `firstPair` on. All calls together cover the picture; an odd last row counts
   *  as a pair. */
  void (*take)(void* user, int32_t firstPair, int32_t pairs);
  void* user;
};

/** Decodes the frame in the codec's store with the operations above. Outside of whole macroblocks the samples are those of the
 *  plain pipeline: grey columns, and rows from the coefficient plane. The codec's bit reader stays as it was. */
void Rows_Decode_Frame(JdecCodec* codec, const RowsTaker& taker);
