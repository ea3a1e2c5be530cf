/* The camera's own picture when it is given none: a harbour under a changing light, with a clock. */
#pragma once

#include "apps/velarto/camera/lettering.h"
#include "apps/velarto/camera/scenery.h"

#include <chrono>

struct Scene {
  int32_t width = 0, height = 0;
  Picture day, dusk, night;  ///< The still parts, in three lights.
  std::vector<uint8_t> sky;  ///< Scenery_Sky_Mask.
  bool lettered = false;     ///< There is a face; else the clock has hands and no text is drawn.
  Lettering clock, caption;
  std::chrono::system_clock::time_point start;  ///< When the light was that of the forenoon.
};

/** Prepares pictures of that size, sides of 16 and up. */
void Scene_Start(int32_t width, int32_t height, Scene* scene);

/** Draws what is to be seen at that time. */
void Scene_Draw(const Scene& scene, std::chrono::system_clock::time_point now, Picture* picture);
