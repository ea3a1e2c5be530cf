#include "apps/velarto/stop_flag.h"

#include <csignal>

static std::atomic<bool> stopFlag = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

static void Set_Flag(int number) {
  stopFlag = true;
  std::signal(number, SIG_DFL);
}

std::atomic<bool>* Stop_On_Signals() {
  stopFlag = false;
  std::signal(SIGINT, Set_Flag);
  std::signal(SIGTERM, Set_Flag);
  return &stopFlag;
}
