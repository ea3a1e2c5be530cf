/* The hidden text of a frame: at most one bit for each luma block, given by the parity of its high-frequency coefficients. Each
 * codec collects the text of its own frames. */
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

/** The text of a frame, as far as its blocks were decoded. */
struct WatermarkCollector {
  int32_t length;    ///< Bytes in text.
  int32_t bitIndex;  ///< Bits since the last stored byte.
  uint8_t byte;      ///< The byte being collected.
  uint8_t text[WatermarkRoom];
};

/** Empties the collector for the next frame. */
void Watermark_Begin(WatermarkCollector* collector);

/** Takes a luma block: a ScanHook (kernels/kernels.h), whose user value is a WatermarkCollector. */
void Watermark_Take_Block(void* collector, const int32_t* scan);
