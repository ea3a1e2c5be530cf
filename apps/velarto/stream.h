/* What the commands share: reading a source frame by frame, and the start of the library. */
#pragma once

#include "apps/velarto/frame_walk.h"
#include "apps/velarto/sources/source.h"

#include <functional>
#include <string>

/** Takes a frame; false ends the reading. */
using FrameTaker = std::function<bool(const WalkedFrame& frame)>;

struct ReadOptions {
  /** A connection in which a frame start was found, and which breaks or ends, is made anew until *stop is set; each loss and each
   *  return is told in a line on standard error. */
  bool reconnect = false;
  /** Told, if not empty, ahead of those lines whether the connection is lost now. */
  std::function<void(bool lost)> onLost;
  /** Given, if not empty, the bytes of the source as they come, ahead of the frames that they complete. */
  std::function<void(std::span<const uint8_t> bytes)> onBytes;
};

/** Reads the source to its end, until *stop is set, or until `take` has enough, and gives each frame to `take`. The walk, a new
 *  one, tells afterwards what was read. False, with *error, when the source can't be opened or breaks. All calls come from the
 *  calling thread. */
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
