/* The speed regulator of a decoder holds a speed and the factor derived from it. Frames are not paced by it. */
#pragma once

#include "decode/decoder.h"

struct JdecSpeedRegulator {
  int32_t mode;        ///< 1 or 2; decoders use 2.
  int32_t speed;       ///< The speed that was set last, 1 at first.
  double speedFactor;  ///< speed, or 1 / -speed for a negative one.
};

struct JdecSpeedHolder {
  int32_t speedEnabled;           ///< 1; with 0 Decoder_Set_Speed does nothing.
  int32_t speedReserved;          ///< 0.
  JdecSpeedRegulator* regulator;  ///< Owned.
};

/** Makes a regulator of mode 1 or 2 with speed 1. Null for another mode, or without memory. */
JdecSpeedRegulator* Speed_New(int32_t mode);
/** Frees a regulator. Gives 1, or 0 for null. */
int32_t Speed_Free(JdecSpeedRegulator* regulator);
/** Stores a speed and its factor and writes both to standard output. Gives 1, or 0 for null. */
int32_t Speed_Set(JdecSpeedRegulator* regulator, int32_t speed);
/** Speed_Set on the decoder's regulator. Gives 0 if the decoder has no holder, or speedEnabled is 0. */
int32_t Decoder_Set_Speed(JdecDecoder* decoder, int32_t speed);

/** Makes a decoder's holder with its regulator. Null without memory. */
JdecSpeedHolder* Speed_Holder_New();
/** Frees holder and regulator. Null is allowed. */
void Speed_Holder_Free(JdecSpeedHolder* holder);
