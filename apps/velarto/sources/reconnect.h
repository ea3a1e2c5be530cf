/* Patience with a connection that broke. */
#pragma once

#include "apps/velarto/sources/source.h"

/** Between two frames of one source that the connection doesn't live through. */
struct Reconnect {
  bool lost = false;                              ///< No frame has come since the connection broke.
  size_t tries = 0;                               ///< Since then.
  std::chrono::steady_clock::time_point lastTry;  ///< Its start; at first the moment of the break.
};

/** Notes a break; one that follows before a frame has come belongs to the same loss. True when a loss begins. */
bool Reconnect_Lost(Reconnect* reconnect);

/** Notes a frame. True when that ends a loss. */
bool Reconnect_Back(Reconnect* reconnect);

/** Opens the source again, once or as often as it takes: a try starts 0.25, 0.5, 1, then always 2 seconds after the start of the
 * one before it, however long that one took. False only when *stop has become true. */
bool Reconnect_Open(Reconnect* reconnect, const std::string& name, const std::atomic<bool>* stop, Source* source);
