#include "apps/velarto/sources/reconnect.h"

#include <algorithm>
#include <thread>

using Clock = std::chrono::steady_clock;

static constexpr std::chrono::milliseconds FirstPause{250};
/** How often the pause doubles. */
static constexpr size_t MostDoublings = 3;
/** Between two checks of the stop flag. */
static constexpr std::chrono::milliseconds StopLook{50};

bool Reconnect_Lost(Reconnect* reconnect) {
  if (reconnect->lost) return false;
  *reconnect = {true, 0, Clock::now()};
  return true;
}

bool Reconnect_Back(Reconnect* reconnect) {
  const bool lost = reconnect->lost;
  reconnect->lost = false;
  return lost;
}

/** Waits until the next try is due; false once stopped. */
static bool Await_Try(Reconnect* reconnect, const std::atomic<bool>* stop) {
  const auto due = reconnect->lastTry + FirstPause * (1 << std::min(reconnect->tries, MostDoublings));
  while (!stop->load() && Clock::now() < due) {
    std::this_thread::sleep_for(std::min<Clock::duration>(due - Clock::now(), StopLook));
  }
  reconnect->lastTry = Clock::now();
  ++reconnect->tries;
  return !stop->load();
}

bool Reconnect_Open(Reconnect* reconnect, const std::string& name, const std::atomic<bool>* stop, Source* source) {
  std::string ignored;
  while (Await_Try(reconnect, stop)) {
    if (Source_Open(name, stop, source, &ignored)) return true;
  }
  return false;
}
