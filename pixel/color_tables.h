/* Clamp and colour tables. They are made at compile time; Init_Global_Tables sets the pointers. */
#pragma once

#include <cstdint>

/** Clamp table, indices -256 to 1151: 0 below 0, the index up to 255, 255 up to 639, 0 up to 1023, then 0 to 127. */
extern const uint8_t* rangeLimit;

/** Eight tables of 256 in 16.16 fixed point: rY, gY, bY, rCb, gCb, bCb, gCr, bCr. rCr is the same as bCb. */
extern const int32_t* rgbYccTable;

/** Four tables of 256: cbG, cbB, crR, crG. cbG and crG are in 16.16 fixed point, cbB and crR are whole offsets. */
extern const int32_t* yccRgbTable;

/** Gives the clamp table. */
const uint8_t* Init_Range_Limit();
/** Sets rangeLimit to null if table is what it points to. */
void Free_Range_Limit(const uint8_t* table);
/** Sets rgbYccTable. */
void Init_RGB_YCC_Table();
/** Sets rgbYccTable to null. */
void Free_RGB_YCC_Table();
/** Sets yccRgbTable and the tables of the dither. */
void Init_YCC_RGB_Table();
/** Sets yccRgbTable to null. */
void Free_YCC_RGB_Table();
