/* A size to measure at. */
#pragma once

#include <cstdint>

/** In pixels. */
struct PictureSize {
  int32_t width, height;
};
