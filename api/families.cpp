/* The decoder_ family: a guard against a null decoder ahead of the operation itself. */
#include "api/speed.h"

int32_t VELARTO_CDECL decoder_set_speed(JdecDecoder* decoder, int32_t speed) {
  return decoder ? Decoder_Set_Speed(decoder, speed) : 0;
}
