/* One frame from the store to the screen. */
#pragma once

#include "decode/decoder.h"
#include "decode/frame_header.h"

#include <span>

/** Decodes the frame in the store, whose length and extendedHeader are set and whose position is 0. Adopts its size and quality,
 *  fills the planes and, if the decoder is headless or draw is not 0, the raster. With draw not 0 and a display, shows it.
 *  Gives 1. Gives 0, with the decoder unchanged, for a frame without a whole header, a size that is not allowed, or without
 *  memory; and 0 if draw is not 0 but there is no display. The process's hidden text becomes that of the frame, empty for a frame
 *  that was refused. */
int32_t Decode_Frame(JdecDecoder* decoder, int32_t isJfif, int32_t draw);

/** Copies a frame into the codec's store. Its header is not read. False, with nothing changed, for more than FrameStoreSize
 *  bytes. */
bool Store_Frame(JdecCodec* codec, std::span<const uint8_t> bytes);

/** Decodes a frame whose bytes and form are known, as Decode_Frame does: without a search, and even if frames are hidden. The
 *  assembly buffer and a frame that is open there stay as they are. True if Decode_Frame gives 1; false, with nothing changed,
 *  for more than FrameStoreSize bytes. */
bool Decode_Delimited_Frame(JdecDecoder* decoder, std::span<const uint8_t> bytes, FrameForm form, bool draw);

/** Shows the raster in the decoder's display, which must not be null. */
void Present_Picture(JdecDecoder* decoder);

/** Converts the planes again and shows the result. Does nothing without a display. */
void Redraw_Frame(JdecDecoder* decoder);
