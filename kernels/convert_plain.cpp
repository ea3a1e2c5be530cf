/* Luma, and chroma that 2x2 pixels share, to packed pixels, the rule: table reads and sums, no multiplication. */
#include "kernels/kernels.h"

/** What the chroma of a 2x2 block adds to its luma. Indices into the clamp table stay within -227 to 480. */
struct Offsets {
  int32_t red, green, blue;
};

static Offsets Chroma_Offsets(const int32_t* yccRgb, uint8_t cb, uint8_t cr) {
  const int32_t *const cbG = yccRgb, *const cbB = yccRgb + 256, *const crR = yccRgb + 512, *const crG = yccRgb + 768;
  return {crR[cr], (cbG[cb] + crG[cr]) >> 16, cbB[cb]};
}

static void Store_Word(uint8_t* out, int32_t word) {
  out[0] = (uint8_t)word;
  out[1] = (uint8_t)(word >> 8);
}

using StorePixel = void (*)(uint8_t* out, int32_t red, int32_t green, int32_t blue);

static void Store_Rgb24(uint8_t* out, int32_t red, int32_t green, int32_t blue) {
  out[0] = (uint8_t)blue;
  out[1] = (uint8_t)green;
  out[2] = (uint8_t)red;
}

static void Store_Rgb32(uint8_t* out, int32_t red, int32_t green, int32_t blue) {
  Store_Rgb24(out, red, green, blue);
  out[3] = 0;
}

static void Store_Rgb565(uint8_t* out, int32_t red, int32_t green, int32_t blue) {
  Store_Word(out, (red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3);
}

static void Store_Rgb555(uint8_t* out, int32_t red, int32_t green, int32_t blue) {
  Store_Word(out, (red & 0xF8) << 7 | (green & 0xF8) << 2 | blue >> 3);
}

template <StorePixel store>
static void Put(const uint8_t* rangeLimit, int32_t luma, const Offsets& offsets, uint8_t* out) {
  store(out, rangeLimit[luma + offsets.red], rangeLimit[luma + offsets.green], rangeLimit[luma + offsets.blue]);
}

template <StorePixel store, int32_t bytes>
static void Convert(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                    uint8_t* outUpper, uint8_t* outLower, int32_t pairs) {
  for (int32_t c = 0; c < pairs; ++c) {
    const Offsets offsets = Chroma_Offsets(tables->yccRgb, cb[c], cr[c]);
    Put<store>(tables->rangeLimit, yUpper[2 * c], offsets, outUpper);
    Put<store>(tables->rangeLimit, yUpper[2 * c + 1], offsets, outUpper + bytes);
    Put<store>(tables->rangeLimit, yLower[2 * c], offsets, outLower);
    Put<store>(tables->rangeLimit, yLower[2 * c + 1], offsets, outLower + bytes);
    outUpper += 2 * bytes;
    outLower += 2 * bytes;
  }
}

void To_Rgb24_Plain(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                    uint8_t* outUpper, uint8_t* outLower, int32_t pairs) {
  Convert<Store_Rgb24, 3>(tables, yUpper, yLower, cb, cr, outUpper, outLower, pairs);
}

void To_Rgb32_Plain(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb, const uint8_t* cr,
                    uint8_t* outUpper, uint8_t* outLower, int32_t pairs) {
  Convert<Store_Rgb32, 4>(tables, yUpper, yLower, cb, cr, outUpper, outLower, pairs);
}

void To_Rgb565_Plain(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb,
                     const uint8_t* cr, uint8_t* outUpper, uint8_t* outLower, int32_t pairs) {
  Convert<Store_Rgb565, 2>(tables, yUpper, yLower, cb, cr, outUpper, outLower, pairs);
}

void To_Rgb555_Plain(const ColorTables* tables, const uint8_t* yUpper, const uint8_t* yLower, const uint8_t* cb,
                     const uint8_t* cr, uint8_t* outUpper, uint8_t* outLower, int32_t pairs) {
  Convert<Store_Rgb555, 2>(tables, yUpper, yLower, cb, cr, outUpper, outLower, pairs);
}
