/* Clamp and colour tables of all pixel work. Made at compile time; the pointers are set at start-up. */
#pragma once

#include <cstdint>

/** Clamp table, indices -256 to 1151: 0 below 0, the index up to 255, 255 up to 639, 0 up to 1023, then 0 to 127. */
extern const uint8_t* rangeLimit;

/** Eight tables of 256 in 16.16: rY, gY, bY, rCb, gCb, bCb, gCr, bCr; rCr is bCb. */
extern const int32_t* rgbYccTable;

/** Four tables of 256: cbG and crG in 16.16, cbB and crR as whole offsets; in the order cbG, cbB, crR, crG. */
extern const int32_t* yccRgbTable;

const uint8_t* Init_Range_Limit();
void Free_Range_Limit(const uint8_t* table);
void Init_RGB_YCC_Table();
void Free_RGB_YCC_Table();
void Init_YCC_RGB_Table();
void Free_YCC_RGB_Table();
