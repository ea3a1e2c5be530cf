/* From the picture in a part of a multipart body to a frame. */
#pragma once

#include "apps/velarto/picture.h"

/** Keeps what compressing one picture after another needs. */
struct PartConverter {
  DecoderHolder decoder;  ///< Of the size compressed last; none before.
};

/** Adds a frame for the part to *stream: its own bytes if the decoder reads them as they were meant, otherwise its picture
 * compressed anew as a prefixed frame, cropped to whole macroblocks. The library must have been started. False, and adds nothing,
 * for a part that holds neither a frame nor a JPEG image. */
bool Part_To_Frame(PartConverter* converter, std::span<const uint8_t> part, std::vector<uint8_t>* stream);
