/* The ring between the thread that delivers stream bytes and the thread that decodes them. The producer calls
 * JDEC_query_decode_buffer_count and JDEC_write_decode_buffer (velarto.h), the consumer Ring_Read. All three take the decoder's
 * lock. */
#pragma once

#include "decode/decoder.h"

/** Takes at most `length` bytes out of the ring, in the order in which they were written. First sets the decoder's `hidden`: 1 if
 *  more than three quarters of the ring are filled, so that the backlog is skipped undecoded, otherwise 0. Gives the bytes taken;
 *  0 for a length of 0 or less. */
int32_t Ring_Read(JdecDecoder* decoder, uint8_t* buffer, int32_t length);
