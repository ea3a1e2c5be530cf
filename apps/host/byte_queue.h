/* The network of the host: a thread reads the source, and a few pieces of it wait for the window's thread, which never waits for
 * the source. */
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/** Unopened: the source failed before a byte came; Broken: later on. */
enum class BytesState { Running, Ended, Unopened, Broken };

/** Shared by the two threads; the last one to let go frees it. */
struct ByteQueue;

/** Starts reading; loop: a file again and again. `message` is posted to the window when a piece comes, at the end, and now and
 * then while pieces wait, but not before Bytes_Seen has been called for the one before. The thread ends by itself after
 * Bytes_Stop; nobody waits for it long, for it may be stuck in the system. */
std::shared_ptr<ByteQueue> Bytes_Start(const std::string& source, bool loop, HWND window, UINT message);

/** The message has been taken. again: another one is wanted at once. */
void Bytes_Seen(ByteQueue* queue, bool again);

/** Takes the next piece, without waiting; false when none is there. */
bool Bytes_Take(ByteQueue* queue, std::vector<uint8_t>* piece);

/** Has all been taken, and how did it end? On a failure *error says why, if it isn't null. */
BytesState Bytes_State(ByteQueue* queue, std::string* error);

/** Tells the thread to end, and waits a moment for it; nothing is posted afterwards. */
void Bytes_Stop(ByteQueue* queue);
