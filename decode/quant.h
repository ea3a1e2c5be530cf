/* The tables of both transforms for a quality. All tables have 64 entries in natural order. */
#pragma once

#include <cstdint>

/** Builds the quantisation tables of a quality. Below 1 counts as 1, above 100 as 100. Entries are 1 to 255. */
void Quant_Build(int32_t quality, uint16_t* luma, uint16_t* chroma);

/** Builds the table of the inverse transform: quantiser times scale factor, with 14 - shift fractional bits. */
void Quant_Build_Inverse(int16_t* out, const uint16_t* quant, int32_t shift);

/** Builds the table of the forward transform: the low 16 bits of 65536 divided by an entry of the inverse table, rounded. */
void Quant_Build_Forward(int16_t* out, const uint16_t* quant, int32_t shift);
