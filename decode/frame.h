/* One frame from the store to the screen. */
#pragma once

#include "decode/decoder.h"
#include "decode/frame_header.h"

#include <span>

/** Decodes the frame in the store (length and extendedHeader set, position 0): new quality or size, planes, and, if the
 *  decoder is headless or draw is not 0, the raster; shows it if there is a display and draw is not 0. Gives 1; or 0, with
 *  the decoder as it was, for a frame shorter than its header or with a size not allowed, and 0 when it can't be shown. The
 *  process's hidden text is that of the frame afterwards, empty for a frame refused. */
int32_t Decode_Frame(JdecDecoder* decoder, int32_t isJfif, int32_t draw);

/** Copies a frame into the codec's store, its header unread. Gives 1; 0 with nothing changed for more than FrameStoreSize
 *  bytes. */
int32_t Store_Frame(JdecCodec* codec, std::span<const uint8_t> bytes);

/** Decodes a frame whose bytes and form are known, as Decode_Frame does, without any search and whether frames are hidden or not.
 *  The assembly buffer and a frame open there stay as they are. Gives what Decode_Frame gives; 0 with nothing changed for more
 *  than FrameStoreSize bytes. */
int32_t Decode_Delimited_Frame(JdecDecoder* decoder, std::span<const uint8_t> bytes, FrameForm form, int32_t draw);

/** Shows the raster as it is in the decoder's display, which must be there. */
void Present_Picture(JdecDecoder* decoder);

/** Converts the planes as they are and shows them, if there is a display. */
void Redraw_Frame(JdecDecoder* decoder);
