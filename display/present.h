/* Showing a raster in the display's window: the one way to the screen. */
#pragma once

#include "display/context.h"

/** Shows the part (x, y, width, height) of the raster, which lies within it and is not empty, with the motion-area layer when
 * mdMode is not 0. The display keeps the raster's address. Nothing is drawn in a minimised window or one too small, on a screen
 * that refuses, or, by GDI, from a null raster. The draw callback runs last, and only when DirectDraw has shown the frame.
 * Takes no lock while drawing. */
void Display_Present(JdecDisplay* display, JdecRaster* raster, int32_t x, int32_t y, int32_t width, int32_t height,
                     int32_t mdMode);

/** Copies the raster to the surface's top rows, as far as the surface reaches. Gives success, also when the lock gave no pixels;
 *  E_FAIL for a null argument; or the code of the lock. */
HRESULT Display_Copy_Raster(IDirectDrawSurface* surface, const JdecRaster* raster);

/** Brings the surfaces of the DirectDraw form back and refills the frame rows, if a raster was shown; the overlay rows are not
 *  drawn again. Gives 1, or 0 when that failed. */
int32_t Display_Restore(JdecDisplay* display);

/** Height of the picture in a client area of that width: 4:3 for pictures 640 or 720 wide, their own shape otherwise. width is
 *  above 0. */
int32_t Target_Height(int32_t clientWidth, int32_t width, int32_t height);
