/* The user's wish to end a command that works until then. */
#pragma once

#include <atomic>

/** From now on Ctrl-C (or SIGTERM) sets the flag that this gives, of which there is one; a second time ends the program as ever.
 */
std::atomic<bool>* Stop_On_Signals();
