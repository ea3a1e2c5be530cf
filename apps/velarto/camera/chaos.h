/* Breaks the stream on purpose: frames cut short, garbage between frames, changed bytes within them. */
#pragma once

#include "apps/velarto/frame_walk.h"

#include <random>

struct ChaosOptions {
  double cut = 0, garbage = 0, corrupt = 0;  ///< Probability for each frame, 0 to 1.
  uint32_t seed = 1;
};

/** What happened to a frame. */
struct ChaosHit {
  bool cut = false, garbage = false, corrupt = false;
};

struct Chaos {
  ChaosOptions options;
  std::mt19937 dice;
};

Chaos Chaos_Start(const ChaosOptions& options);

/** Throws the dice for one frame and does to the bytes what they say. With the same seed and frames the same happens. Garbage
 * that looks like the start of a frame announces no bytes beyond the frame behind it, so only that frame can be lost by it; a cut
 * frame takes in as many of the bytes that follow as it lacks. */
ChaosHit Chaos_Apply(Chaos* chaos, FrameForm form, std::vector<uint8_t>* bytes);
