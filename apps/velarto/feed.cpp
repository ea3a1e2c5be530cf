#include "apps/velarto/feed.h"

#include "apps/velarto/stream.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

using Clock = std::chrono::steady_clock;

/** Frames of a recording held for the window's thread; the reader waits when there are as many. */
static constexpr size_t QueueLength = 4;
/** Time for a stopped reader to close its connection; it checks the stop flag more often than that. */
static constexpr std::chrono::milliseconds EndWait{100};

struct Feed {
  FeedOptions options;
  bool live = false;
  Clock::time_point due;  ///< When the next frame of a recording may go out; used by the reader only.
  std::atomic<bool> stop = false;
  std::mutex lock;  ///< Guards what follows.
  std::condition_variable changed;
  std::deque<FedFrame> queue;
  bool paused = false;
  bool reconnecting = false;
  bool ended = false;
  std::string error;
  HWND window = nullptr;
  UINT message = 0;
};

static void Notify(const Feed& feed) {
  if (feed.window) PostMessageA(feed.window, feed.message, 0, 0);
}

static void Put_Bytes(const WalkedFrame& frame, FedFrame* fed) {
  fed->bytes.assign(frame.bytes.begin(), frame.bytes.end());
  fed->frame = frame;
  fed->frame.bytes = fed->bytes;
}

/** Waits until the next frame of a recording is due. A delay of more than one period is not made up for. */
static void Await_Due(Feed* feed, std::unique_lock<std::mutex>* held) {
  const auto period =
      std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / feed->options.framesPerSecond));
  while (!feed->stop && (feed->paused || Clock::now() < feed->due)) {
    if (feed->paused) {
      feed->changed.wait(*held);
    } else {
      feed->changed.wait_until(*held, feed->due);
    }
  }
  feed->due = std::max(feed->due + period, Clock::now() - period);
}

/** Queues a frame of a recording when it is due and there is room. False once stopped. */
static bool Queue_Recorded(Feed* feed, const WalkedFrame& frame) {
  std::unique_lock held(feed->lock);
  Await_Due(feed, &held);
  feed->changed.wait(held, [&] { return feed->stop || feed->queue.size() < QueueLength; });
  if (feed->stop) return false;
  Put_Bytes(frame, &feed->queue.emplace_back());
  feed->changed.notify_all();
  Notify(*feed);
  return true;
}

/** Queues a live frame. It replaces one that still waits: that one is late already. */
static bool Queue_Live(Feed* feed, const WalkedFrame& frame) {
  const std::lock_guard held(feed->lock);
  if (feed->stop) return false;
  if (feed->paused || !Frame_Decodable(frame)) return true;
  if (!feed->queue.empty()) {
    // Its message is still to come.
    ++feed->queue.back().skipped;
    Put_Bytes(frame, &feed->queue.back());
    return true;
  }
  Put_Bytes(frame, &feed->queue.emplace_back());
  feed->changed.notify_all();
  Notify(*feed);
  return true;
}

static void Set_Reconnecting(Feed* feed, bool lost) {
  const std::lock_guard held(feed->lock);
  feed->reconnecting = lost;
  Notify(*feed);
}

static void Run_Feed(const std::shared_ptr<Feed>& feed) {
  const std::string& source = feed->options.source;
  const auto queue = feed->live ? Queue_Live : Queue_Recorded;
  const auto take = [&](const WalkedFrame& frame) { return queue(feed.get(), frame); };
  const ReadOptions reading = {
      .reconnect = true, .onLost = [&](bool lost) { Set_Reconnecting(feed.get(), lost); }, .onBytes = {}};
  std::string error;
  bool good = true;
  do {
    FrameWalk walk;
    good = Read_Frames(source, &feed->stop, &walk, take, &error, reading);
    if (good && walk.frames == 0) {
      good = false;
      error = No_Frame_Text(source, walk);
    }
  } while (good && feed->options.loop && !feed->stop);
  const std::lock_guard held(feed->lock);
  if (!good) feed->error = error;
  feed->ended = true;
  feed->changed.notify_all();
  Notify(*feed);
}

std::shared_ptr<Feed> Feed_Start(const FeedOptions& options) {
  auto feed = std::make_shared<Feed>();
  feed->options = options;
  feed->live = Source_Live(options.source);
  feed->due = Clock::now();
  std::thread(Run_Feed, feed).detach();
  return feed;
}

void Feed_Await(Feed* feed, int milliseconds) {
  std::unique_lock held(feed->lock);
  feed->changed.wait_for(held, std::chrono::milliseconds(milliseconds), [&] { return feed->ended || !feed->queue.empty(); });
}

void Feed_Notify(Feed* feed, HWND window, UINT message) {
  const std::lock_guard held(feed->lock);
  feed->window = window;
  feed->message = message;
  for (size_t i = 0; i < feed->queue.size() + feed->ended; ++i) Notify(*feed);
}

bool Feed_Take(Feed* feed, FedFrame* frame) {
  const std::lock_guard held(feed->lock);
  if (feed->queue.empty()) return false;
  *frame = std::move(feed->queue.front());
  feed->queue.pop_front();
  feed->changed.notify_all();
  return true;
}

FeedState Feed_State(Feed* feed, std::string* error) {
  const std::lock_guard held(feed->lock);
  if (!feed->ended || !feed->queue.empty()) return FeedState::Running;
  if (feed->error.empty()) return FeedState::Ended;
  if (error) *error = feed->error;
  return FeedState::Failed;
}

bool Feed_Reconnecting(Feed* feed) {
  const std::lock_guard held(feed->lock);
  return feed->reconnecting && !feed->ended;
}

void Feed_Pause(Feed* feed, bool paused) {
  const std::lock_guard held(feed->lock);
  feed->paused = paused;
  if (paused && feed->live) feed->queue.clear();
  feed->changed.notify_all();
}

void Feed_Stop(Feed* feed) {
  std::unique_lock held(feed->lock);
  feed->stop = true;
  feed->window = nullptr;
  feed->changed.notify_all();
  feed->changed.wait_for(held, EndWait, [&] { return feed->ended; });
}
