/* What painting needs of the windows, which window/canvas.cpp supplies. For the files of the layer alone. */
#pragma once

#include "platform/portable/paint/pixels.h"

#include <vector>

/** Something to draw on. */
struct Canvas {
  PixelView view;  ///< Without pixels, what is drawn is lost.
  POINT origin;    ///< Where the view's first pixel lies, in screen coordinates or in those of a DC.
};

/** The window's client area on the screen; without pixels when there is no such window or it doesn't show. */
Canvas Canvas_Of(HWND window);
/** That of the uppermost window with a pixel at this place of the screen; without pixels if there is none. */
Canvas Canvas_At(LONG x, LONG y);

/** Those of all windows that show, each above those before it. */
std::vector<Canvas> All_Canvases();

/** Tell the desktop of new pixels of a window, if there is such a window, or of all windows. */
void Canvas_Changed(HWND window);
void All_Canvases_Changed();
