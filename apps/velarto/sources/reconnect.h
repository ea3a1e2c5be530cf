/* Connecting again after a connection broke. */
#pragma once

#include "apps/velarto/sources/source.h"

/** State of a source across its connections. */
struct Reconnect {
  bool lost = false;                              ///< No frame has come since the connection broke.
  size_t tries = 0;                               ///< Since then.
  std::chrono::steady_clock::time_point lastTry;  ///< Its start; at first the time of the loss.
};

/** Call when the connection breaks. True when a loss begins; a second break before a frame has come belongs to the same loss. */
bool Reconnect_Lost(Reconnect* reconnect);

/** Call for each frame. True when it ends a loss. */
bool Reconnect_Back(Reconnect* reconnect);

/** Tries to open the source again until that succeeds. A try starts 0.25, 0.5, 1, then always 2 seconds after the start of the
 * try before it, however long that one took. False only when *stop has become true. */
bool Reconnect_Open(Reconnect* reconnect, const std::string& name, const std::atomic<bool>* stop, Source* source);
