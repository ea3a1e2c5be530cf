/* The host's reader: a thread reads the source, and a few pieces of it wait for the window's thread, which never waits for the
 * source. */
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/** Unopened: the source failed before a byte came; Broken: later on. */
enum class BytesState { Running, Ended, Unopened, Broken };

/** Shared by the two threads; freed with its last owner. */
struct ByteQueue;

/** Starts reading; loop: a file again and again. `message` is posted to the window when a piece comes, at the end, and repeatedly
 * while pieces wait, but not before Bytes_Seen has been called for the last one. The thread ends by itself after Bytes_Stop,
 * which doesn't wait long: the thread may be blocked in the system. */
std::shared_ptr<ByteQueue> Bytes_Start(const std::string& source, bool loop, HWND window, UINT message);

/** The message has arrived. again: post another one at once. */
void Bytes_Seen(ByteQueue* queue, bool again);

/** Takes the next piece, without waiting; false when none is there. */
bool Bytes_Take(ByteQueue* queue, std::vector<uint8_t>* piece);

/** Running until all has been taken. On a failure *error says why, if it isn't null. */
BytesState Bytes_State(ByteQueue* queue, std::string* error);

/** Tells the thread to end, and waits a moment for it; nothing is posted afterwards. */
void Bytes_Stop(ByteQueue* queue);
