/* The source colour key of an off-screen surface, and the two colours that its sample row holds. */
#pragma once

#include "display/context.h"

/** Makes a colour the surface's source key, by way of Sample_Colors. Gives the result of setting the key. */
HRESULT Set_Color_Key(IDirectDrawSurface* surface, COLORREF color, int32_t keyRow);

/** Gives a colour as a pixel of the surface, or, with CLR_INVALID, the pixel at (0, 0); all ones when the surface gives no
 *  pixels or no device context. Takes the process-wide colours from the row above the last keyRow rows, and makes mdColor the
 *  first of them; they stay as they are where the surface has no such row or column. The surface comes out as it went in. */
uint32_t Sample_Colors(IDirectDrawSurface* surface, COLORREF color, int32_t keyRow);
