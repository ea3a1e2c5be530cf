/* Stopping a running command on a signal. */
#pragma once

#include <atomic>

/** From now on Ctrl-C (or SIGTERM) sets the returned flag, of which there is one; a second one ends the program as usual. */
std::atomic<bool>* Stop_On_Signals();
