/* The ring between the thread that delivers stream bytes and the thread that decodes them: JDEC_query_decode_buffer_count and
 * JDEC_write_decode_buffer (velarto.h) on one side, Ring_Read on the other. All of it works under the decoder's lock. */
#pragma once

#include "decode/decoder.h"

/** Takes at most `length` bytes out of the ring, in the order in which they went in. While more than three quarters of the ring
 * are held when it is called, it hides the decoder's frames, so that the backlog is passed over undecoded; otherwise it shows
 * them. Gives the bytes taken; 0 for a length of 0 or less. */
int32_t Ring_Read(JdecDecoder* decoder, uint8_t* buffer, int32_t length);
