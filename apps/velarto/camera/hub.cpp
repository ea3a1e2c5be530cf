#include "apps/velarto/camera/hub.h"

void Hub_Put(Hub* hub, std::shared_ptr<HubFrame> frame) {
  const std::lock_guard held(hub->lock);
  frame->number = ++hub->number;
  hub->newest = std::move(frame);
  hub->changed.notify_all();
}

void Hub_Close(Hub* hub) {
  const std::lock_guard held(hub->lock);
  hub->closed = true;
  hub->changed.notify_all();
}

bool Hub_Await_Watcher(Hub* hub) {
  std::unique_lock held(hub->lock);
  hub->changed.wait(held, [hub] { return hub->closed || hub->watchers > 0; });
  return !hub->closed;
}

bool Hub_Sleep(Hub* hub, std::chrono::steady_clock::time_point until) {
  std::unique_lock held(hub->lock);
  return !hub->changed.wait_until(held, until, [hub] { return hub->closed; });
}

HubWatch::HubWatch(Hub* watched) : hub(watched) {
  const std::lock_guard held(hub->lock);
  seen = hub->number;
  if (++hub->watchers == 1) hub->changed.notify_all();
}

HubWatch::~HubWatch() {
  const std::lock_guard held(hub->lock);
  --hub->watchers;
}

HubFramePtr Hub_Next(HubWatch* watch) {
  Hub* const hub = watch->hub;
  std::unique_lock held(hub->lock);
  hub->changed.wait(held, [&] { return hub->closed || hub->number > watch->seen; });
  if (hub->closed) return nullptr;
  watch->seen = hub->number;
  return hub->newest;
}

std::span<const uint8_t> Hub_Stream_Bytes(const HubFrame& frame) { return frame.faulty ? frame.sent : frame.bytes; }

std::span<const uint8_t> Hub_Jfif(const HubFrame& frame) {
  if (!frame.readable) return {};
  if (frame.form == FrameForm::Jfif) return frame.bytes;
  std::call_once(frame.converted, [&frame] { frame.jfif = Frame_To_Jfif(frame.bytes, frame.form); });
  return frame.jfif;
}
