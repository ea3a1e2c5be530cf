/* The two ways into a decoder, JDEC_Receive_Data and JDEC_Receive_Data_2 with JDEC_Check_Decode_Frame (velarto.h), and the steps
 * of the pushing path that stand on their own. */
#pragma once

#include "decode/decoder.h"

/** Counts a chunk for the bit-rate figure; every three seconds the figure goes to the display as text. */
void Count_Bits(JdecDecoder* decoder, int32_t length);

/** Writes a chunk to an open recording, from the first frame start on. A write that fails or falls short ends the recording and
 *  closes its file. Takes the decoder's lock. */
void Record_Chunk(JdecDecoder* decoder, int32_t length, const uint8_t* data);
