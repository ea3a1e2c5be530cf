/* The hidden text of the process: one for all decoders, whole, of the frame decoded last. Any thread. */
#pragma once

#include "decode/watermark.h"

/** Makes the collector's text the text of the process. */
void Watermark_Publish(const WatermarkCollector& collector);

/** Empties the text of the process: a frame was passed over undecoded. */
void Watermark_Reset();

/** Copies the text, without a terminating zero, if capacity is not below its length. Gives its length. A null buffer has no
 *  capacity. */
int32_t Watermark_Read(uint8_t* buffer, int32_t capacity);

/** Compares the text with the reference pattern, which is empty. Gives 0 when the text is empty, or has the pattern at its start
 * or, looked for from its middle on, a whole number of texts further on; otherwise 1. */
int32_t Watermark_Check();
