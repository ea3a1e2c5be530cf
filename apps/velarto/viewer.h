/* The viewer's window: shows the frames of a feed and answers keys. */
#pragma once

#include "apps/velarto/feed.h"
#include "apps/velarto/overlays.h"

struct ViewerOptions {
  FeedOptions feed;
  int64_t frames = 0;     ///< End after so many frames, or at the end of the source; 0: only the user ends it.
  std::string snapshots;  ///< Folder for snapshots; empty: the working folder.
  Overlays overlays;      ///< As they are at the start.
};

/** Shows the source in a window until the user quits. Runs the message loop on the calling thread; one viewer at a time. The
 * library must have been started. Gives the exit code; failures have been reported. */
int Viewer_Run(const ViewerOptions& options);
