#include "apps/host/byte_queue.h"

#include "apps/velarto/sources/source.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

static constexpr size_t PieceSize = 65536, MostPieces = 4;
/** Between two messages while pieces wait. */
static constexpr std::chrono::milliseconds Reminder{20};
/** Time for a stopped reader to close its source; it checks the stop flag more often than that. */
static constexpr std::chrono::milliseconds EndWait{100};

struct ByteQueue {
  std::string source;
  bool loop = false;
  UINT message = 0;
  std::atomic<bool> stop = false;
  bool some = false;  ///< A piece has been queued; used by the reader only.
  std::mutex lock;    ///< Guards what follows.
  std::condition_variable changed;
  HWND window = nullptr;
  bool posted = false;  ///< A message has been posted and not seen yet.
  std::deque<std::vector<uint8_t>> pieces;
  BytesState state = BytesState::Running;
  std::string error;
};

static void Notify(ByteQueue* queue) {
  if (queue->window && !queue->posted) queue->posted = PostMessageA(queue->window, queue->message, 0, 0);
}

/** Queues a piece, and waits for room after it. */
static void Put_Piece(ByteQueue* queue, std::vector<uint8_t> piece) {
  std::unique_lock held(queue->lock);
  queue->pieces.push_back(std::move(piece));
  queue->some = true;
  do Notify(queue);
  while (!queue->changed.wait_for(held, Reminder, [&] { return queue->stop || queue->pieces.size() < MostPieces; }));
}

/** Reads the source once, to its end. False, with *error, when it can't be opened or breaks. */
static bool Read_Source(ByteQueue* queue, std::string* error) {
  Source source;
  if (!Source_Open(queue->source, &queue->stop, &source, error)) return false;
  int64_t count = 1;
  while (count > 0 && !queue->stop) {
    std::vector<uint8_t> piece(PieceSize);
    count = Source_Read(&source, piece, error);
    piece.resize(count > 0 ? static_cast<size_t>(count) : 0);
    if (count > 0) Put_Piece(queue, std::move(piece));
  }
  Source_Close(&source);
  if (count < 0) *error = Source_Title(queue->source) + ": " + *error;
  return count >= 0;
}

static void Run_Queue(const std::shared_ptr<ByteQueue>& queue) {
  std::string error;
  bool good = true;
  // An empty source is not repeated: that would never end.
  do good = Read_Source(queue.get(), &error);
  while (good && queue->loop && queue->some && !queue->stop);
  const std::lock_guard held(queue->lock);
  queue->state = good ? BytesState::Ended : queue->some ? BytesState::Broken : BytesState::Unopened;
  queue->error = error;
  queue->changed.notify_all();
  Notify(queue.get());
}

std::shared_ptr<ByteQueue> Bytes_Start(const std::string& source, bool loop, HWND window, UINT message) {
  auto queue = std::make_shared<ByteQueue>();
  queue->source = source;
  queue->loop = loop;
  queue->window = window;
  queue->message = message;
  std::thread(Run_Queue, queue).detach();
  return queue;
}

bool Bytes_Take(ByteQueue* queue, std::vector<uint8_t>* piece) {
  const std::lock_guard held(queue->lock);
  if (queue->pieces.empty()) return false;
  *piece = std::move(queue->pieces.front());
  queue->pieces.pop_front();
  queue->changed.notify_all();
  return true;
}

void Bytes_Seen(ByteQueue* queue, bool again) {
  const std::lock_guard held(queue->lock);
  queue->posted = false;
  if (again) Notify(queue);
}

BytesState Bytes_State(ByteQueue* queue, std::string* error) {
  const std::lock_guard held(queue->lock);
  if (!queue->pieces.empty()) return BytesState::Running;
  if (error) *error = queue->error;
  return queue->state;
}

void Bytes_Stop(ByteQueue* queue) {
  std::unique_lock held(queue->lock);
  queue->stop = true;
  queue->window = nullptr;
  queue->changed.notify_all();
  queue->changed.wait_for(held, EndWait, [&] { return queue->state != BytesState::Running; });
}
