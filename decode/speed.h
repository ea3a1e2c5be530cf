/* The speed regulator of a decoder: a store for a speed and the factor derived from it. Nothing paces frames by it. */
#pragma once

#include "decode/decoder.h"

struct JdecSpeedRegulator {
  int32_t mode;        ///< 1 or 2; decoders use 2.
  int32_t speed;       ///< As set, 1 at first.
  double speedFactor;  ///< speed, or 1 / -speed for a negative one.
};

struct JdecSpeedHolder {
  int32_t speedEnabled;           ///< 1; with 0 the decoder refuses a speed.
  int32_t speedReserved;          ///< 0.
  JdecSpeedRegulator* regulator;  ///< Owned.
};

/** Makes a regulator of mode 1 or 2 with speed 1; null for another mode or when memory can't be had. */
JdecSpeedRegulator* Speed_New(int32_t mode);
/** Frees a regulator. Gives 1, or 0 for null. */
int32_t Speed_Free(JdecSpeedRegulator* regulator);
/** Stores a speed and its factor and writes both to standard output. Gives 1, or 0 for null. */
int32_t Speed_Set(JdecSpeedRegulator* regulator, int32_t speed);
/** Speed_Set on the decoder's regulator; 0 if it has none or its holder refuses. */
int32_t Decoder_Set_Speed(JdecDecoder* decoder, int32_t speed);

/** Makes a decoder's holder with its regulator; null when memory can't be had. */
JdecSpeedHolder* Speed_Holder_New();
/** Frees holder and regulator. Null is allowed. */
void Speed_Holder_Free(JdecSpeedHolder* holder);
