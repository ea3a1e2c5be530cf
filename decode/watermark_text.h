/* The hidden text of the process: that of the frame that any decoder decoded last. All operations may be called on any thread. */
#pragma once

#include "decode/watermark.h"

/** Makes the collector's text the text of the process. */
void Watermark_Publish(const WatermarkCollector& collector);

/** Empties the text of the process, when a frame is skipped undecoded. */
void Watermark_Reset();

/** Gives the text's length, and copies the text to buffer, without a terminating zero, unless buffer is null or capacity is
 *  smaller. */
int32_t Watermark_Read(uint8_t* buffer, int32_t capacity);

/** Compares the text, up to its first zero byte, with a pattern, which is empty. Gives 0 if the text is empty, if it begins with
 *  the pattern, or if the pattern's first offset in the second half is a multiple of the text's length; otherwise 1. */
int32_t Watermark_Check();
