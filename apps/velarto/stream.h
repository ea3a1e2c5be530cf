/* What the commands share: reading a source frame by frame, and the start of the library. */
#pragma once

#include "apps/velarto/frame_walk.h"
#include "apps/velarto/sources/source.h"

#include <functional>
#include <string>

/** Takes a frame; false ends the reading. */
using FrameTaker = std::function<bool(const WalkedFrame& frame)>;

struct ReadOptions {
  /** Connect again, until *stop is set, when a connection breaks or ends in which a frame start was found. Each loss and each
   *  return is reported in a line on standard error. */
  bool reconnect = false;
  /** Called, if not empty, before those lines: is the connection lost now? */
  std::function<void(bool lost)> onLost;
  /** Called, if not empty, with the bytes of the source as they come, before the frames that they complete. */
  std::function<void(std::span<const uint8_t> bytes)> onBytes;
};

/** Reads the source to its end, until *stop is set, or until `take` gives false; gives each frame to `take`. *walk, a new one,
 * has the counts afterwards. False, with *error, when the source can't be opened or breaks. All calls come from the calling
 *  thread. */
bool Read_Frames(const std::string& name, const std::atomic<bool>* stop, FrameWalk* walk, const FrameTaker& take,
                 std::string* error, const ReadOptions& options = {});

/** "no frame found in SOURCE (N bytes read)". */
std::string No_Frame_Text(const std::string& name, const FrameWalk& walk);

/** Names of the kernel levels, lowest first. */
std::vector<std::string> Kernel_Names();
/** The level that runs on this processor. */
std::string Kernel_Best();
/** Starts the library with the kernels of that level; with an empty name, the best. */
void Library_Start(const std::string& kernelName);
