/* From the quality number to the tables of both transforms. All tables have 64 entries in natural order. */
#pragma once

#include <cstdint>

/** Quantisation tables for a quality, any number: below 1 counts as 1, above 100 as 100. Entries are 1 to 255. */
void Quant_Build(int32_t quality, uint16_t* luma, uint16_t* chroma);

/** Table of the inverse transform: quantiser times scale factor, with 14 - shift fractional bits. */
void Quant_Build_Inverse(int16_t* out, const uint16_t* quant, int32_t shift);

/** Table of the forward transform: 65536 divided by quantiser times scale factor, rounded, its low 16 bits. */
void Quant_Build_Forward(int16_t* out, const uint16_t* quant, int32_t shift);
