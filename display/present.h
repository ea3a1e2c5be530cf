/* Presentation: a raster is shown in the display's window. */
#pragma once

#include "display/context.h"

/** Shows the part (x, y, width, height) of the raster, which must lie within it and not be empty, with the motion-area layer if
 *  mdMode is not 0. The display keeps the raster's address. Nothing is drawn if the window is minimised or too small, if the
 *  system fails, or, by GDI, if the raster is null. The draw callback is called last, only if DirectDraw has shown the frame. No
 *  lock is held while drawing. */
void Display_Present(JdecDisplay* display, JdecRaster* raster, int32_t x, int32_t y, int32_t width, int32_t height,
                     int32_t mdMode);

/** Copies the raster to the surface's top rows, clipped to the surface. Gives DD_OK, even if the lock gave no pixels; E_FAIL for
 *  a null argument; or the code of a lock that failed. */
HRESULT Display_Copy_Raster(IDirectDrawSurface* surface, const JdecRaster* raster);

/** Restores the surfaces of the DirectDraw form and copies the raster that was shown last, if there is one. What was below the
 *  picture's rows is not drawn again. Gives 1, or 0 if that failed. */
int32_t Display_Restore(JdecDisplay* display);

/** Height of the picture in a client area of that width: 4:3 for pictures 640 or 720 wide, otherwise with the picture's own
 *  aspect ratio. width is above 0. */
int32_t Target_Height(int32_t clientWidth, int32_t width, int32_t height);
