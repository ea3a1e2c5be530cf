/* One frame from the store to the screen. */
#pragma once

#include "decode/decoder.h"

/** Decodes the frame in the store (length and extendedHeader set, position 0): new quality or size, planes, and, if the
 *  decoder is headless or draw is not 0, the raster; shows it if there is a display and draw is not 0. Gives 1; or 0, with
 *  the decoder as it was, for a frame shorter than its head or with a size not allowed, and 0 when it can't be shown. The
 * process's hidden text is that of the frame afterwards, empty for a frame refused. */
int32_t Decode_Frame(JdecDecoder* decoder, int32_t isJfif, int32_t draw);

/** Converts the planes as they stand and shows them, if there is a display. */
void Redraw_Frame(JdecDecoder* decoder);
