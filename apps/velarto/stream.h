/* What the commands share: reading a source frame by frame, and the start of the library. */
#pragma once

#include "apps/velarto/frame_walk.h"
#include "apps/velarto/sources/source.h"

#include <functional>
#include <string>

/** Takes a frame; false ends the reading. */
using FrameTaker = std::function<bool(const WalkedFrame& frame)>;

/** Reads the source to its end, until *stop is set, or until `take` has enough, and gives each frame to `take`. The walk, a new
 *  one, tells afterwards what was read. False, with *error, when the source can't be opened or breaks. */
bool Read_Frames(const std::string& name, const std::atomic<bool>* stop, FrameWalk* walk, const FrameTaker& take,
                 std::string* error);

/** "no frame found in SOURCE (N bytes read)". */
std::string No_Frame_Text(const std::string& name, const FrameWalk& walk);

/** Names of the kernel levels, lowest first. */
std::vector<std::string> Kernel_Names();
/** The level that runs on this processor. */
std::string Kernel_Best();
/** Starts the library with the kernels of that level; with an empty name, the best. */
void Library_Start(const std::string& kernelName);
