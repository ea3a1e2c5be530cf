/* Where the camera's frames come from: the scene, pictures, or a recording. */
#pragma once

#include "apps/velarto/camera/hub.h"
#include "apps/velarto/camera/scene.h"
#include "apps/velarto/sources/source.h"

struct SupplyOptions {
  std::vector<std::string> inputs;    ///< None: the scene. One recording, or pictures.
  int32_t width = 640, height = 480;  ///< Of the scene.
  FrameStyle style;                   ///< Not for a recording, whose frames stay unchanged.
};

struct Supply {
  SupplyOptions options;
  DecoderHolder decoder;  ///< Compresses.
  Scene scene;
  Picture picture;                             ///< Of the scene.
  std::vector<std::vector<uint8_t>> pictures;  ///< As frames.
  size_t next = 0;                             ///< Of the pictures.
  bool recorded = false;
  std::atomic<bool> stop = false;
  Source source;   ///< The recording, when open.
  FrameWalk walk;  ///< Through it.
};

/** Prepares the supply; pictures are compressed here. False, with one line in *error, when an input can't be read or is neither a
 *  picture nor a recording. */
bool Supply_Open(const SupplyOptions& options, Supply* supply, std::string* error);

/** Makes the next frame: the scene as it is now, or the next one of the input, which repeats. False with *error. */
bool Supply_Next(Supply* supply, HubFrame* frame, std::string* error);

void Supply_Close(Supply* supply);
