/* The viewer's supply of frames: a thread reads the source and hands its frames to the window's thread, which never waits for the
 * source. A recording delivers every frame, at its rate. Of a live source only the newest frame is kept: one that is faster than
 * the screen loses frames, undecoded, instead of growing late. */
#pragma once

#include "apps/velarto/frame_walk.h"

#include "platform/win32.h"

#include <memory>
#include <string>

struct FeedOptions {
  std::string source;
  double framesPerSecond = 25;  ///< Of a file; live sources come as they come.
  bool loop = false;            ///< Read a file again and again.
};

/** A frame with its bytes. */
struct FedFrame {
  WalkedFrame frame;
  std::vector<uint8_t> bytes;
  int64_t skipped = 0;  ///< Frames before it that it replaced.
};

enum class FeedState { Running, Ended, Failed };

/** Shared by the two threads; freed with its last owner. */
struct Feed;

/** Starts reading. The thread ends by itself after Feed_Stop, which doesn't wait long: it may be blocked in the system. */
std::shared_ptr<Feed> Feed_Start(const FeedOptions& options);

/** Waits until a frame is there or none will come, at most so many milliseconds. */
void Feed_Await(Feed* feed, int milliseconds);

/** Posts `message` to the window for each frame from now on (those queued included), when the connection is lost or back, and at
 * the end. Null: no longer. */
void Feed_Notify(Feed* feed, HWND window, UINT message);

/** Takes the next frame, without waiting; false when none is queued. */
bool Feed_Take(Feed* feed, FedFrame* frame);

/** Running until all frames have been taken. With Failed, *error says why, if it isn't null. */
FeedState Feed_State(Feed* feed, std::string* error);

/** The connection is lost, and the feed tries to connect again. */
bool Feed_Reconnecting(Feed* feed);

/** A paused recording stops; the frames of a paused live source are dropped. */
void Feed_Pause(Feed* feed, bool paused);

/** Tells the thread to end, and waits a moment for it; nothing is posted afterwards. */
void Feed_Stop(Feed* feed);
