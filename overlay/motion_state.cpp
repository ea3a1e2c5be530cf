#include "overlay/motion_state.h"

#include "platform/lock.h"

std::atomic<uint32_t> mdColorFirst = 0;
std::atomic<uint32_t> mdColorSecond = 0;
std::atomic<uint32_t> mdColor = 0;
std::atomic<int32_t> mdRectMode = 0;

static ModuleLock lastRectLock;
static LayerRect mdLastRect = {0, 0, 320, 240};

LayerRect Last_Rect() {
  const LockHold hold(lastRectLock);
  return mdLastRect;
}

void Set_Last_Rect(const LayerRect& rect) {
  const LockHold hold(lastRectLock);
  mdLastRect = rect;
}
