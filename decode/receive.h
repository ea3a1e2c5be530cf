/* The two receive paths of a decoder. Pushing: JDEC_Receive_Data. Polling: JDEC_Receive_Data_2 and JDEC_Check_Decode_Frame
 * (velarto.h). Here are the steps of the pushing path that don't look for frames. */
#pragma once

#include "decode/decoder.h"

/** Counts a chunk of `length` bytes for the bit rate, and gives the rate to the display as text every three seconds. */
void Count_Bits(JdecDecoder* decoder, int32_t length);

/** Writes a chunk to the open recording, if there is one, from the first frame start on. A write that fails or is short ends the
 *  recording and closes its file. Takes the decoder's lock. */
void Record_Chunk(JdecDecoder* decoder, int32_t length, const uint8_t* data);
