/* The fast road from a frame's bytes to its samples: row of macroblocks by row, without coefficients of the whole frame. The
 * samples are those of Huff_Decode_Frame and IDCT_Plane (huffman_decode.h, idct.h), which are the plain road. */
#pragma once

#include "decode/codec.h"
#include "decode/watermark.h"
#include "kernels/kernels.h"

/** What the road works in, one for each codec. */
struct RowStore {
  StripQuant luma, chroma;
  int16_t* blocks;  ///< Of a strip, zero between two strips; at a multiple of 64 bytes.
  StripReach reach;
  uint8_t* data;  ///< The frame's entropy-coded data without stuffing, as far as it was needed.
};

/** Gives null when memory can't be had. */
RowStore* Row_Store_New();
/** Null is allowed. */
void Row_Store_Free(RowStore* store);

/** Takes over the codec's inverse tables. */
void Row_Store_Set_Tables(RowStore* store, const int16_t* lumaInverse, const int16_t* chromaInverse);

/** 1 if frames are to take this road: the kernels for it are there, and the packed form of the transform isn't asked for. */
int32_t Rows_Available();

/** What stands for data that is missing. Behind the data's end all bits are 0, so that all blocks of a component come out alike.
 */
enum class RowsRest : uint8_t {
  No,     ///< The strip at hand has data.
  First,  ///< It is the first without any,
  Known,  ///< or a later one: blocks and samples are known.
};

/** A frame on this road. */
struct RowsRun {
  JdecCodec* codec;
  const uint8_t *stuffed, *stuffedEnd;  ///< The data that the reader doesn't have yet.
  StripReader reader;
  int32_t predictors[3];
  uint8_t* rows[32];    ///< Where the next samples go: 16 rows of luma, 8 of Cb, 8 of Cr.
  int32_t row, column;  ///< Macroblocks done: whole rows, and of the next row.
  int32_t strip;        ///< Macroblocks decoded and not yet transformed.
  RowsRest rest;
  int32_t restScan[64];         ///< Of a luma block of the rest: its hidden-text positions.
  uint8_t restSamples[24 * 8];  ///< A block of it each of luma, Cb, Cr.
};

/** Begins with the frame in the codec's store, whose size the codec's buffers have. */
void Rows_Open(RowsRun* run, JdecCodec* codec);
/** Decodes the next strip. 0 when there is none. */
int32_t Rows_Decode_Strip(RowsRun* run);
/** Transforms it. 1 when a row of macroblocks is complete with it. */
int32_t Rows_Transform_Strip(RowsRun* run);
/** Ends with what lies below the last macroblock. The codec's watermark holds the frame's hidden text now. */
void Rows_Close(RowsRun* run);

/** What is to happen to each row of macroblocks while its samples are near, and at last to what lies below. */
struct RowsTaker {
  void (*take)(void* user, int32_t firstPair, int32_t pairs);  ///< Pairs of picture rows; together all, also half a pair.
  void* user;
};

/** All of that. What lies outside of whole macroblocks comes out as on the plain road: columns grey, rows as the coefficient
 * plane holds them. The codec's bit reader stays as it was. */
void Decode_Rows(JdecCodec* codec, const RowsTaker& taker);
