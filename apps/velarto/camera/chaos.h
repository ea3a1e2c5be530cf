/* Breaks the stream on purpose: frames cut short, garbage between frames, changed bytes within them. */
#pragma once

#include "apps/velarto/frame_walk.h"

#include <random>

struct ChaosOptions {
  double cut = 0, garbage = 0, corrupt = 0;  ///< Probability for each frame, 0 to 1.
  uint32_t seed = 1;
};

/** The faults of one frame. */
struct ChaosHit {
  bool cut = false, garbage = false, corrupt = false;
};

struct Chaos {
  ChaosOptions options;
  std::mt19937 generator;
};

Chaos Chaos_Start(const ChaosOptions& options);

/** Draws the faults of one frame and applies them to its bytes. The same seed and frames give the same faults. Garbage that looks
 * like the start of a frame announces no bytes beyond the next frame, so that only that frame can be lost by it; a cut frame
 * swallows as many of the following bytes as it lacks. */
ChaosHit Chaos_Apply(Chaos* chaos, FrameForm form, std::vector<uint8_t>* bytes);
