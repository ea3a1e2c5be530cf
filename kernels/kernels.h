/* All code that depends on the processor: one record of functions, and the plain records that they work on.
 *
 * The plain level is the rule and decides every bit; another level agrees with it bit for bit. A file holds one subject at one
 * level (idct_plain.cpp), is compiled with the flags of its level, and includes this header, the intrinsics and bodies of static
 * functions, nothing else: of an inline function that other files have too, the linker may keep the copy with the instructions of
 * the wrong level. */
#pragma once

#include <stddef.h>
#include <stdint.h>

/** Table of one Huffman code, in two stages. The next 8 bits index the first; where they are not a whole code, `values` names the
 *  slot (1 and up) of a second stage, indexed by the 8 bits after them. */
struct JdecHuffLookup {
  const uint8_t* const* secondLengths;  ///< By slot: 256 code lengths, 9 to 16, or 0 where no code is. Null without slots.
  const uint8_t* const* secondValues;   ///< By slot: 256 symbols. Null without slots.
  uint8_t slotCount;                    ///< Number of slots plus one.
  uint8_t lengths[256];                 ///< Length of the code, 1 to 8, or 0 where these 8 bits are not a whole code.
  uint8_t values[256];                  ///< The symbol; with length 0 the slot, or 0 where no code starts like this.
};

/** Reader of entropy-coded bytes. From `end` on every byte reads as 0. */
struct HuffReader {
  const uint8_t* next;  ///< Next byte to take.
  const uint8_t* end;   ///< One past the last byte.
  uint32_t bitBuffer;   ///< Bits taken from bytes, newest in the low bits.
  int32_t bitCount;     ///< How many low bits of bitBuffer are still to be used.
};

/** What the decoding of blocks reads: tables that never change. */
struct HuffTables {
  const JdecHuffLookup* dcLuma;
  const JdecHuffLookup* acLuma;
  const JdecHuffLookup* dcChroma;
  const JdecHuffLookup* acChroma;
  const int32_t* zigzagOrder;  ///< 80 entries: scan position to natural position, 63 from entry 64 on.
};

/** Takes the 64 coefficients of a luma block in scan order, as the stream brings them. user: the hookUser of the call. */
using ScanHook = void (*)(void* user, const int32_t* scan);

/* The row pipeline, from bytes to samples without the coefficients of a whole frame: the stuffing is removed from the data once,
 * then each macroblock row is decoded strip by strip. A strip is decoded, transformed, and cleared for the next one, all in the
 * first-level cache.
 *
 * A block of a strip is 64 words of 16 bits in natural order. Two blocks lie side by side, row by row: 8 words of one, 8 words of
 * the other. A macroblock is three such pairs: upper luma, lower luma, Cb with Cr. */

/** Most macroblocks of a strip. */
static const int32_t StripMacroblocks = 16;
/** Words of a macroblock, and of a pair of blocks in it. */
static const int32_t StripMacroblockSize = 384, StripPairSize = 128;
/** Bits that one step of the decoding looks up. */
static const int32_t StripLookupBits = 11;
/** Zero bytes that must follow data without stuffing. */
static const int32_t StripPadding = 64;

/** What the next bits stand for: at most two values and an end of block. Positions count from the block's next scan position. A
 *  single value is there twice; if there is none, a zero goes to a position that is still zero. */
struct StripSymbols {
  int16_t values[2];
  uint8_t positions[2];
  uint16_t progress;  ///< To be added to the block's StripProgress.
};

/** How far a block is decoded, in one number: the low byte is the next scan position, the bits above it the sum of the absolute
 * values of its coefficients without DC. A position beyond the block says that the bits were no whole symbol, or that the block
 * ends among them. */
using StripProgress = uint32_t;
static const int32_t StripSizeShift = 8;
static const uint32_t StripPastEnd = 0xC0;

/** In a step, whose low six bits are the number of bits taken: the block ends. */
static const int32_t StepEnd = 0x40;

/** Entries of a code's table of single symbols: by the next StripLookupBits bits, or, where the first 8 of 16 bits are ones, by
 * the 8 after them. All longer codes begin with 8 ones. */
static const int32_t StripCodeEntries = (1 << StripLookupBits) + 256;

/** Tables of the fast decoding, indexed by table and the next StripLookupBits bits. Never change. */
struct StripTables {
  uint8_t steps[5 << StripLookupBits];  ///< Luma DC, luma AC, chroma DC, chroma AC; the last stops a strip.
  StripSymbols symbols[5 << StripLookupBits];
  uint16_t codes[4 * StripCodeEntries];  ///< Single symbols: the low byte is the symbol, the high one the bits of code and value.
  uint8_t places[96];                    ///< Scan position to word of a block; from 63 on the last one.
  /** By block of a full strip: table of its DC value and of what follows. One more DC table stops the strip. */
  const uint8_t* sequence[2 * (6 * StripMacroblocks + 1)];
  uint16_t offsets[6 * StripMacroblocks + 1];  ///< By block of a full strip: its first word.
};

/** Where the decoding of a frame stands, in data without stuffing that StripPadding zero bytes follow. */
struct StripReader {
  const uint8_t* data;
  size_t position, end;  ///< In bits.
};

/** How far each block of a decoded strip reaches, six a macroblock; the positions are at least 1. */
struct StripReach {
  StripProgress blocks[6 * StripMacroblocks];
};

/** Classes of blocks by the scan positions that they use: up to StripNarrow all are in the upper left quarter. */
static const int32_t StripNarrow = 10, StripMiddle = 28;

/** What the inverse transform of one component reads. */
struct StripQuant {
  int16_t factors[64];   ///< Dequantisation, natural order.
  int16_t weights[64];   ///< How much a coefficient can add to what is multiplied: see StripWeightLimit.
  uint16_t narrowLimit;  ///< Up to this sum of absolute values a block within StripNarrow can't pass that limit;
  uint16_t middleLimit;  ///< up to this one, a block within StripMiddle.
};

/** A block can be transformed in 16 bits if the weighted sum of its absolute values is at most this: then whatever is multiplied
 *  fits, and everything else may wrap, since the final clamp looks at no higher bit. The gains are the largest that the first
 * pass has for a coefficient in that row, in 8 fractional bits. Rounding adds less than 3 to a result of the first pass, of which
 * at most four are summed. DC and the others that are only added have weight 0. */
static const int32_t StripWeightLimit = 32700;
static const int32_t StripRowGains[8] = {256, 256, 256, 302, 256, 452, 618, 1287};

/** Copies entropy-coded data without its stuffing, and StripPadding zero bytes after it. A run of FF counts as one; FF 00 is FF,
 * another byte after FF stands for itself, and FF at the end is FF. Stops at `wanted` bytes or up to 31 more, and moves data to
 * where the next call continues. out: room for end - data + 2 * StripPadding. Gives the number of bytes. */
using UnstuffKernel = size_t (*)(const uint8_t** data, const uint8_t* end, uint8_t* out, size_t wanted);

/** Decodes up to StripMacroblocks macroblocks into blocks, which are zero; DC values are differences. reach: six a macroblock,
 * with at least the scan positions that a block uses, and its sum of absolute values. After the data's end all bits are 0. */
using DecodeStripKernel = void (*)(StripReader* reader, const StripTables* tables, int16_t* blocks, StripReach* reach,
                                   int32_t macroblocks);

/** Transforms those blocks and zeroes them. predictors: the last DC values of luma, Cb and Cr, updated. rows: 16 of luma, 8 of
 * Cb, 8 of Cr, of which 16 and 8 samples a macroblock are written. */
using TransformStripKernel = void (*)(int16_t* blocks, const StripReach* reach, int32_t macroblocks, const StripQuant* luma,
                                      const StripQuant* chroma, int32_t* predictors, uint8_t* const* rows);

/** What the converters read: tables that never change. */
struct ColorTables {
  const uint8_t* rangeLimit;  ///< Clamp table, indices -256 to 1151.
  const int32_t* yccRgb;      ///< Four tables of 256: cbG, cbB, crR, crG.
};

/** What the dithering reads. Each table quantises the sum of a sample and a dither value, and gives its bits of the palette index
 *  in place. */
struct DitherTables {
  const uint8_t* y;   ///< By luma plus dither, 0 to 270.
  const uint8_t* cb;  ///< By half of Cb plus dither, 0 to 142.
  const uint8_t* cr;  ///< By half of Cr plus dither.
};

/** Decodes a row of `columns` macroblocks: of each, four luma blocks (two of `upper`, two of `lower`), one of `cb`, one of
 *  `cr`; every block is 64 coefficients in natural order, already zero. `predictors` are the last DC values of luma, Cb and Cr,
 *  and are updated. Each luma block's scan goes to `hook`, unless that is null. */
using DecodeRowKernel = void (*)(HuffReader* reader, const HuffTables* tables, int32_t* upper, int32_t* lower, int32_t* cb,
                                 int32_t* cr, int32_t columns, int32_t* predictors, ScanHook hook, void* hookUser);

/** Inverse transform of `count` blocks of 64 coefficients that lie side by side. table: 64 dequantisation factors. rows: eight
 *  rows of samples, 8 * count of each are written. */
using IdctRowKernel = void (*)(const int32_t* blocks, int32_t count, const int16_t* table, const uint8_t* rangeLimit,
                               uint8_t* const* rows);

/** Two rows of pixels, 2 * pairs wide, from two rows of luma and the one row of Cb and Cr that they share. */
using ConvertRowsKernel = void (*)(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb,
                                   const uint8_t* cr, uint8_t* outUpper, uint8_t* outLower, int32_t pairs);

/** A row of palette indices, 2 * pairs of them, from as many luma samples and one Cb and one Cr sample a pair. matrixRow: the
 * four dither values, 0 to 15, that the row's columns use in turn; a single pair reads only two. */
using DitherRowKernel = void (*)(const DitherTables* tables, const uint8_t* y, const uint8_t* cb, const uint8_t* cr,
                                 const uint8_t* matrixRow, uint8_t* out, int32_t pairs);

/** `count` pixels of B, G, R become one sample each in every plane. rgbYcc: eight tables of 256 in 16.16, rY, gY, bY, rCb, gCb,
 *  bCb, gCr, bCr. */
using ToYccRowKernel = void (*)(const int32_t* rgbYcc, const uint8_t* pixels, uint8_t* y, uint8_t* cb, uint8_t* cr,
                                int32_t count);

/** Averages of 2x2 samples: (sum of four + bias) >> 2, with one bias in even columns of the target and another in odd ones. */
using DownsampleRowKernel = void (*)(const uint8_t* upper, const uint8_t* lower, uint8_t* out, int32_t pairs, int32_t evenBias,
                                     int32_t oddBias);

/** Forward transform and quantisation of `count` blocks that lie side by side: eight rows of samples to 64 coefficients each.
 *  forward: reciprocals; inverse: the divisors themselves, for the dead zone. */
using ForwardRowKernel = void (*)(uint8_t* const* rows, int32_t count, const int16_t* forward, const int16_t* inverse,
                                  int32_t* blocks);

/** From pixels to 4:2:0 planes: two rows of `count` pixels become as many samples of luma each, and count / 2 of Cb and Cr. Those
 *  are averages as of DownsampleRowKernel, of samples that were rounded one by one. */
using ToPlanesKernel = void (*)(const uint8_t* upper, const uint8_t* lower, uint8_t* yUpper, uint8_t* yLower, uint8_t* cb,
                                uint8_t* cr, int32_t count, int32_t evenBias, int32_t oddBias);

/** One Huffman code by symbol. */
struct JdecHuffEncode {
  uint32_t code[256];
  int8_t size[256];  ///< Bits of the code, 1 to 16; 0 for a symbol without one.
};

/** Quantised DC coefficients differ by less than this, at qualities up to 90. */
constexpr int32_t HuffDcReach = 1024;

/** In an entry of the AC table: use the code by symbol instead. */
constexpr uint32_t HuffAcSpecial = 0x80000000;

/** What the encoding of a component's blocks reads. The low byte of an entry is the number of bits to write, at most 23; the bits
 *  are above it. */
struct HuffEncodeTables {
  const uint32_t* dc;      ///< By difference plus HuffDcReach.
  const uint16_t* acRows;  ///< By distance from the last coefficient that isn't 0, 0 to 64: where its part of `ac` begins.
  const uint32_t* ac;      ///< By coefficient as a byte; 0 for none. The first of all is the end of block.
  const JdecHuffEncode *dcCode, *acCode;
  /** By row of a block and the set of its 8 coefficients that are not 0: the same set by scan position. */
  const uint64_t (*scanMasks)[256];
};

/** A macroblock row to encode: 16 rows of luma, 8 of Cb and Cr each, and for luma and chroma what ForwardRowKernel takes. */
struct EncodeSource {
  uint8_t *const *y, *const *cb, *const *cr;
  const int16_t *lumaForward, *lumaInverse, *chromaForward, *chromaInverse;
};

/** Writer of entropy-coded bytes. */
struct HuffWriter {
  uint8_t* next;          ///< Where the next byte goes.
  uint8_t* end;           ///< One past the last that may be written.
  uint64_t bits;          ///< Bits that are no whole byte yet, newest in the low bits; those above bitCount mean nothing.
  int32_t bitCount;       ///< 0 to 7.
  int32_t predictors[3];  ///< The last quantised DC coefficients of luma, Cb and Cr.
};

/** Encodes `columns` macroblocks, from samples to bytes with their stuffing: forward transform and quantisation as of
 *  ForwardRowKernel, then Huffman coding. tables: of luma, of chroma. Gives 1; or 0 when the bytes would pass the writer's end,
 *  which leaves the writer unusable. */
using EncodeRowKernel = int32_t (*)(const HuffEncodeTables* tables, const EncodeSource* source, int32_t columns,
                                    HuffWriter* writer);

struct Kernels {
  DecodeRowKernel decodeRow;
  IdctRowKernel idctRow;
  IdctRowKernel idctRowPacked;  ///< The 16-bit form; differs from idctRow in the last place.
  ConvertRowsKernel toRgb24;    ///< B, G, R.
  ConvertRowsKernel toRgb32;    ///< B, G, R, 0.
  ConvertRowsKernel toRgb565;   ///< Little-endian words.
  ConvertRowsKernel toRgb555;
  ConvertRowsKernel toRgb24Stream;  ///< As toRgb24, past the cache where the rows' addresses allow it.
  ConvertRowsKernel toRgb32Stream;
  void (*endStream)();  ///< Called after the last of those, before other threads are told of the pixels.
  DitherRowKernel ditherRow;
  ToYccRowKernel toYccRow;
  DownsampleRowKernel downsampleRow;
  ForwardRowKernel forwardRow;
  UnstuffKernel unstuff;  ///< This and the two below: null at the plain level, where frames are decoded by whole planes.
  DecodeStripKernel decodeStrip;
  TransformStripKernel transformStrip;
  ToPlanesKernel toPlanes;  ///< This and the next: null at the plain level, where pictures are compressed by whole planes.
  EncodeRowKernel encodeRow;
};

/** Gives the record of the best kernels among the levels in `mask` (KernelLevel in kernels/cpu.h), which must not name a level
 *  that the processor lacks. A level that isn't compiled into this build changes nothing. */
Kernels Kernels_Select(uint32_t mask);

/** The record in use, set by JDEC_Init and read-only afterwards. */
extern Kernels kernels;

void Decode_Row_Plain(HuffReader* reader, const HuffTables* tables, int32_t* upper, int32_t* lower, int32_t* cb, int32_t* cr,
                      int32_t columns, int32_t* predictors, ScanHook hook, void* hookUser);
void Idct_Row_Plain(const int32_t* blocks, int32_t count, const int16_t* table, const uint8_t* rangeLimit, uint8_t* const* rows);
void Idct_Row_Packed_Plain(const int32_t* blocks, int32_t count, const int16_t* table, const uint8_t* rangeLimit,
                           uint8_t* const* rows);
void To_Rgb24_Plain(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                    uint8_t* outUpper, uint8_t* outLower, int32_t pairs);
void To_Rgb32_Plain(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                    uint8_t* outUpper, uint8_t* outLower, int32_t pairs);
void To_Rgb565_Plain(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb,
                     const uint8_t* cr, uint8_t* outUpper, uint8_t* outLower, int32_t pairs);
void To_Rgb555_Plain(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb,
                     const uint8_t* cr, uint8_t* outUpper, uint8_t* outLower, int32_t pairs);
void Dither_Row_Plain(const DitherTables* tables, const uint8_t* y, const uint8_t* cb, const uint8_t* cr,
                      const uint8_t* matrixRow, uint8_t* out, int32_t pairs);
void To_Ycc_Row_Plain(const int32_t* rgbYcc, const uint8_t* pixels, uint8_t* y, uint8_t* cb, uint8_t* cr, int32_t count);
void Downsample_Row_Plain(const uint8_t* upper, const uint8_t* lower, uint8_t* out, int32_t pairs, int32_t evenBias,
                          int32_t oddBias);
void Forward_Row_Plain(uint8_t* const* rows, int32_t count, const int16_t* forward, const int16_t* inverse, int32_t* blocks);

/* Replace a subject's entries of a record by those of a level. */
void Use_Convert_Sse2(Kernels* record);
void Use_Convert_Avx2(Kernels* record);
void Use_Dither_Sse2(Kernels* record);
void Use_Dither_Avx2(Kernels* record);
void Use_Unstuff_Sse2(Kernels* record);
void Use_Unstuff_Avx2(Kernels* record);
void Use_Entropy_Sse2(Kernels* record);
void Use_Entropy_Avx2(Kernels* record);
void Use_Strip_Transform_Sse2(Kernels* record);
void Use_Strip_Transform_Avx2(Kernels* record);
void Use_To_Planes_Sse2(Kernels* record);
void Use_To_Planes_Avx2(Kernels* record);
void Use_Encode_Sse2(Kernels* record);
void Use_Encode_Avx2(Kernels* record);
