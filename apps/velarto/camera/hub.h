/* The newest frame, shared by all clients of the camera. A frame never changes once it is in the hub; a client that is too slow
 * for one gets the next. */
#pragma once

#include "apps/velarto/frame_maker.h"

#include <condition_variable>
#include <memory>
#include <mutex>

struct HubFrame {
  int64_t number = 0;  ///< Counted from 1.
  FrameForm form = FrameForm::Compact;
  std::vector<uint8_t> bytes;  ///< As made.
  bool faulty = false;         ///< The stream gets `sent` in place of `bytes`.
  std::vector<uint8_t> sent;
  bool readable = true;  ///< The header is complete: there is a JFIF form.
  mutable std::once_flag converted;
  mutable std::vector<uint8_t> jfif;  ///< Use Hub_Jfif.
};
using HubFramePtr = std::shared_ptr<const HubFrame>;

struct Hub {
  std::mutex lock;  ///< Guards what follows.
  std::condition_variable changed;
  HubFramePtr newest;
  int64_t number = 0;  ///< Of the newest frame.
  int watchers = 0;
  bool closed = false;
};

/** Makes the frame the newest one and gives it its number. */
void Hub_Put(Hub* hub, std::shared_ptr<HubFrame> frame);

/** Ends all waiting, now and later. */
void Hub_Close(Hub* hub);

/** Waits until there is a watcher; false once the hub is closed. */
bool Hub_Await_Watcher(Hub* hub);

/** Waits until that time; false once the hub is closed. */
bool Hub_Sleep(Hub* hub, std::chrono::steady_clock::time_point until);

/** A watcher of the hub, for as long as it lives. */
struct HubWatch {
  explicit HubWatch(Hub* watched);
  ~HubWatch();
  HubWatch(const HubWatch&) = delete;
  HubWatch& operator=(const HubWatch&) = delete;

  Hub* hub;
  int64_t seen;  ///< Number of the frame given last, or of the newest when the watch began.
};

/** Waits for a frame made after the one given last. Null once the hub is closed. */
HubFramePtr Hub_Next(HubWatch* watch);

/** The bytes that the stream carries for this frame, faults included. */
std::span<const uint8_t> Hub_Stream_Bytes(const HubFrame& frame);

/** The frame as a JPEG image, without the stream's faults. Empty when it has none. */
std::span<const uint8_t> Hub_Jfif(const HubFrame& frame);
