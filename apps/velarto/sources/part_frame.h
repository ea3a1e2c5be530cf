/* From the picture in a part of a multipart body to a frame. */
#pragma once

#include "apps/velarto/picture.h"

/** State kept from one compressed picture to the next. */
struct PartConverter {
  DecoderHolder decoder;  ///< Of the size compressed last; none before.
};

/** Adds a frame for the part to *stream: its own bytes if the decoder would read them correctly, otherwise its picture compressed
 * again as a prefixed frame, cropped to whole macroblocks. The library must have been started. False, without effect, for a part
 * that is neither a frame nor a JPEG image. */
bool Part_To_Frame(PartConverter* converter, std::span<const uint8_t> part, std::vector<uint8_t>* stream);
