/* The hidden text of a frame. A luma block carries at most one bit, given by the parities of its high-frequency coefficients.
 * Each codec collects the text of its frames. */
#pragma once

#include <cstdint>

/** Most bytes of a text; bits after them are ignored. */
constexpr int32_t WatermarkRoom = 1024;
/** Scan positions whose coefficients carry the bit of a block. */
constexpr int32_t WatermarkFirst = 45, WatermarkLast = 63;
/** Least coefficients with a parity in a block that carries a bit. */
constexpr int32_t WatermarkLeast = 3;
/** Each byte of a text is exclusive-ored with this. */
constexpr uint8_t WatermarkMask = 0x24;

/** The parity of a coefficient value, 0 or 1, by a fixed key; -1, which is not counted, for 0 and values outside -256 to 255. */
int32_t Watermark_Parity(int32_t value);

/** The bit of a block. scan: its 64 coefficients in scan order. Gives 0 if at least three quarters of the counted parities,
 *  rounded down, are 0 and fewer are 1; otherwise 1; -1 for a block that carries no bit. */
int32_t Watermark_Block_Bit(const int32_t* scan);

/** The text of a frame as far as it is decoded. */
struct WatermarkCollector {
  int32_t length;    ///< Bytes in text.
  int32_t bitIndex;  ///< Counts the bits of the byte being collected; its value modulo 8 is the next bit's place from the top.
  uint8_t byte;      ///< That byte.
  uint8_t text[WatermarkRoom];
};

/** Empties the collector for the next frame. */
void Watermark_Begin(WatermarkCollector* collector);

/** Takes a luma block. A ScanHook (kernels/kernels.h) whose user value is a WatermarkCollector. */
void Watermark_Take_Block(void* collector, const int32_t* scan);
