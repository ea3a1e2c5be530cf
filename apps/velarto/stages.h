/* The stages of decoding one after another, so that each can be timed; the library itself carries no clocks. */
#pragma once

#include "apps/velarto/picture.h"

/** Seconds. */
struct StageTimes {
  double search = 0;     ///< Finding the frame in the bytes and moving it into the store.
  double entropy = 0;    ///< Entropy decoding.
  double transform = 0;  ///< Inverse transform.
  double color = 0;      ///< Planes to the raster.
};

/** Decodes the frame, which must be a decodable one, with a headless decoder of its size, and adds what each stage took. */
void Stages_Time(JdecDecoder* decoder, const WalkedFrame& frame, StageTimes* times);
