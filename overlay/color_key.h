/* The source colour key of an off-screen surface, and the two sample colours in the last template row. */
#pragma once

#include "display/context.h"

/** Makes a colour the surface's source key. Calls Sample_Colors for it, with all its effects. Gives the result of setting the
 *  key. */
HRESULT Set_Color_Key(IDirectDrawSurface* surface, COLORREF color, int32_t keyRow);

/** Gives a colour as a pixel of the surface, or for CLR_INVALID the pixel at (0, 0); all ones if the surface can't be locked or
 *  gives no pixels. Also sets mdColorFirst and mdColorSecond from the row above the last keyRow rows, and mdColor to the first of
 *  them; the three don't change if the surface has no such row or column. The surface is the same afterwards. If it gives no
 *  device context to convert a colour with, the result is 0, which is black, and the three don't change. */
uint32_t Sample_Colors(IDirectDrawSurface* surface, COLORREF color, int32_t keyRow);
