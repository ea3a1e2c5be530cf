/* The hidden text of a frame: at most one bit a luma block, told by the parity of its high-frequency coefficients, and collected
 * anew for each frame. Each decoder collects its own; the process keeps one text, whole: that of the frame decoded last. */
#pragma once

#include <cstdint>

/** Bytes of a text; further blocks change nothing. */
constexpr int32_t WatermarkRoom = 1024;
/** Scan positions whose coefficients carry the bit of a block. */
constexpr int32_t WatermarkFirst = 45, WatermarkLast = 63;
/** With fewer counting coefficients a block carries no bit. */
constexpr int32_t WatermarkLeast = 3;
/** Each byte of a text travels exclusive-or this. */
constexpr uint8_t WatermarkMask = 0x24;

/** The key of the channel: 0 or 1 for a coefficient value; -1 for one that doesn't count: 0, and those beyond -256 to 255. */
int32_t Watermark_Parity(int32_t value);

/** The bit of a block, of which scan holds the 64 coefficients in scan order: 0 for a majority of three quarters of zeros, else
 * 1; -1 for a block without one. */
int32_t Watermark_Block_Bit(const int32_t* scan);

/** A text in the making. */
struct WatermarkCollector {
  int32_t length = 0;    ///< Bytes in text.
  int32_t bitIndex = 0;  ///< Bits since the last stored byte.
  uint8_t byte = 0;      ///< The byte being collected.
  uint8_t text[WatermarkRoom];
};

/** Takes a luma block: a ScanHook (kernels/kernels.h), whose user value is a WatermarkCollector. */
void Watermark_Take_Block(void* collector, const int32_t* scan);

/** Makes the collector's text that of the process. */
void Watermark_Publish(const WatermarkCollector& collector);

/** Empties the text of the process: a frame was passed over undecoded. */
void Watermark_Reset();

/** Copies the text, without a terminating zero, if capacity is not below its length. Gives its length. A null buffer has no
 *  capacity. */
int32_t Watermark_Read(uint8_t* buffer, int32_t capacity);

/** Compares the text with the reference pattern, which is empty. Gives 0 when the text is empty, or has the pattern at its start
 * or, looked for from its middle on, a whole number of texts further on; otherwise 1. */
int32_t Watermark_Check();
