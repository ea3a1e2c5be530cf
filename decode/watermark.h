/* Hidden text of a frame. Reading it is not built yet: no text is ever found. */
#pragma once

#include <cstdint>

/** Forgets the text of the last frame. */
void Watermark_Reset();

/** Takes the coefficients of one luma block, in scan order. */
void Watermark_Take_Block(const int32_t* scan);

/** 0 when the reference pattern, which is empty, stands at the start of the text: always. */
int32_t Watermark_Check();
