#include "overlay/motion_state.h"

#include <mutex>

std::atomic<uint32_t> mdColorFirst = 0;
std::atomic<uint32_t> mdColorSecond = 0;
std::atomic<uint32_t> mdColor = 0;
std::atomic<int32_t> mdRectMode = 0;

static std::mutex lastRectLock;
static LayerRect mdLastRect = {0, 0, 320, 240};

LayerRect Last_Rect() {
  const std::lock_guard guard(lastRectLock);
  return mdLastRect;
}

void Set_Last_Rect(const LayerRect& rect) {
  const std::lock_guard guard(lastRectLock);
  mdLastRect = rect;
}
