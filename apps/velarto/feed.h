/* The viewer's supply of frames: a thread reads the source and hands its frames to the window's thread, which never waits for the
 * source. Of a recording each frame comes, in its time. Of a live source only the newest is kept: one that comes faster than it
 * can be shown loses frames, undecoded, instead of falling behind. */
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
  int64_t skipped = 0;  ///< Frames that would have come ahead of it and made way.
};

enum class FeedState { Running, Ended, Failed };

/** Shared by the two threads; the last one to let go frees it. */
struct Feed;

/** Starts reading. The thread ends by itself after Feed_Stop; nobody waits for it long, for it may be stuck in the system. */
std::shared_ptr<Feed> Feed_Start(const FeedOptions& options);

/** Waits until a frame is there or none will come, but not longer than that. */
void Feed_Await(Feed* feed, int milliseconds);

/** Posts `message` to the window for each frame from now on (those queued included), when the connection is lost or back, and at
 * the end. Null: no longer. */
void Feed_Notify(Feed* feed, HWND window, UINT message);

/** Takes the next frame, without waiting; false when none is queued. */
bool Feed_Take(Feed* feed, FedFrame* frame);

/** Has all frames been taken, and how did it end? With Failed, *error says why, if it isn't null. */
FeedState Feed_State(Feed* feed, std::string* error);

/** The connection is lost, and is being made anew. */
bool Feed_Reconnecting(Feed* feed);

/** A paused recording stands still; of a paused live source the frames are thrown away. */
void Feed_Pause(Feed* feed, bool paused);

/** Tells the thread to end, and waits a moment for it; nothing is posted afterwards. */
void Feed_Stop(Feed* feed);
