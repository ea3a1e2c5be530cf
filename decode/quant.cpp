#include "decode/quant.h"

#include <algorithm>

/* The tables of JPEG, Annex K, in natural order. They are the tables of quality 50. */
static constexpr uint32_t baseLumaQuant[64] = {16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,
                                               14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,
                                               18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,
                                               49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};

static constexpr uint32_t baseChromaQuant[64] = {17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99,
                                                 24, 26, 56, 99, 99, 99, 99, 99, 47, 66, 99, 99, 99, 99, 99, 99,
                                                 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99,
                                                 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99};

/* Scale factors of the transform: a(row) * a(column) * 16384, where a(0) = 1 and a(k) = sqrt(2) cos(k pi / 16). */
static constexpr int16_t aanScale[64] = {
    16384, 22725, 21407, 19266, 16384, 12873, 8867,  4520, 22725, 31521, 29692, 26722, 22725, 17855, 12299, 6270,
    21407, 29692, 27969, 25172, 21407, 16819, 11585, 5906, 19266, 26722, 25172, 22654, 19266, 15137, 10426, 5315,
    16384, 22725, 21407, 19266, 16384, 12873, 8867,  4520, 12873, 17855, 16819, 15137, 12873, 10114, 6967,  3552,
    8867,  12299, 11585, 10426, 8867,  6967,  4799,  2446, 4520,  6270,  5906,  5315,  4520,  3552,  2446,  1247};

/** Percentage by which a quality scales the base tables. */
static uint32_t Quality_Scale(int32_t quality) {
  if (quality < 1) return 5000;
  if (quality < 50) return 5000u / static_cast<uint32_t>(quality);
  if (quality <= 100) return 200u - 2u * static_cast<uint32_t>(quality);
  return 0;
}

void Quant_Build(int32_t quality, uint16_t* luma, uint16_t* chroma) {
  const uint32_t scale = Quality_Scale(quality);
  for (int32_t i = 0; i < 64; ++i) {
    luma[i] = static_cast<uint16_t>(std::clamp((baseLumaQuant[i] * scale + 50) / 100, 1u, 255u));
    chroma[i] = static_cast<uint16_t>(std::clamp((baseChromaQuant[i] * scale + 50) / 100, 1u, 255u));
  }
}

/** Quantiser times scale factor, with 14 - shift fractional bits. At most (255 * 31521 + 1024) >> 11 = 3925 for shift 11. */
static int32_t Scaled_Quantiser(uint16_t quant, int16_t scale, int32_t shift) {
  return (quant * scale + (1 << (shift - 1))) >> shift;
}

void Quant_Build_Inverse(int16_t* out, const uint16_t* quant, int32_t shift) {
  for (int32_t i = 0; i < 64; ++i) out[i] = static_cast<int16_t>(Scaled_Quantiser(quant[i], aanScale[i], shift));
}

void Quant_Build_Forward(int16_t* out, const uint16_t* quant, int32_t shift) {
  for (int32_t i = 0; i < 64; ++i) {
    // At least 1: the smallest product, 1247 at shift 11, rounds up.
    const int32_t v = Scaled_Quantiser(quant[i], aanScale[i], shift) & 0xFFFF;
    out[i] = static_cast<int16_t>(static_cast<uint16_t>((v / 2 + 65536) / v));
  }
}
