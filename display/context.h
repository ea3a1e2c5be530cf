/* The display of a decoder: one window, one picture size, and one of two forms, chosen when it is made.
 *
 * DirectDraw form: the picture and its overlays are composed on a tall off-screen surface, then stretched to the window.
 * GDI form: the raster is stretched directly to the window, without overlays.
 *
 * A display is used by one thread at a time. Its lock guards the draw callback only. */
#pragma once

#include "pixel/pictures.h"
#include "velarto.h"

#include "platform/win32.h"

using DrawCallback = VelartoDrawCallback;

/** Cells of the motion area. */
constexpr int32_t MotionColumns = 20, MotionRows = 15;
/** Rows of the PTZ strip on the off-screen surface. */
constexpr int32_t PtzStripRows = 120;

struct JdecDisplay {
  int32_t useDirectDraw;  ///< 1 in the DirectDraw form, 0 in the GDI form.
  IDirectDraw* ddraw;     ///< This and the next four: owned, or null.
  IDirectDrawSurface* primarySurface;
  IDirectDrawSurface* offscreenSurface;  ///< Null in the GDI form.
  IDirectDrawClipper* clipper;
  IDirectDrawPalette* ddPalette;  ///< 8-bit DirectDraw form only.
  HWND window;
  JdecRaster* lastRaster;    ///< Raster shown last, not owned. It is copied again to a lost surface.
  int32_t pixelFormat;       ///< A PixelFormat.
  int32_t displayBits;       ///< Bits per pixel of the screen: 8, 16, 24 or 32.
  BITMAPINFO* bitmapInfo;    ///< Owned: a header and 240 colour slots, 1000 bytes.
  HPALETTE gdiPalette;       ///< On 8 bits, for frames that GDI shows.
  HPALETTE previousPalette;  ///< 8-bit GDI form only: the palette that gdiPalette replaced.
  uint8_t* motionCells;      ///< Owned: MotionRows rows of MotionColumns flags. Null in the GDI form.
  HANDLE lock;               ///< Guards the two fields below. Null in the GDI form.
  DrawCallback drawCallback;
  uintptr_t drawCallbackUser;
  int32_t ptzWidth, ptzHeight;  ///< Size of the PTZ bitmap in its strip.
  int32_t ptzEnabled;
  int32_t keyRow;               ///< Rows of the PTZ and position strips, at the bottom of the off-screen surface.
  int32_t posHeight, posWidth;  ///< Size of the position strip.
  int32_t posEnabled;
  uint32_t fpsTick;  ///< Milliseconds: start of the frame-rate period.
  int32_t fpsCount;  ///< Frames in it; -1 at first.
  char osdText[32];  ///< Bit-rate text, always terminated.
  int32_t showStatistics;
  int32_t motionSearchEnabled;
  RECT motionRect;  ///< Picture coordinates.
  char motionString[256];
  HMODULE ddrawLibrary;  ///< Owned, or null: DirectDraw, once it was wanted.
};

/** Rows of the off-screen surface for a picture size. From the top: the picture, the motion-area layer, the template strips, the
 *  PTZ strip and the position strip. For pictures 640 wide and more than 240 high, except 640x480, the layer has fewer rows than
 *  the picture. */
struct SurfaceLayout {
  int32_t posHeight;      ///< Rows of the position strip.
  int32_t keyRow;         ///< Rows of the PTZ and position strips.
  int32_t surfaceHeight;  ///< All rows.
  int32_t layerRows;      ///< Rows of the layer.
  int32_t templateRow;    ///< First row of the template strips.
};
SurfaceLayout Surface_Layout(int32_t width, int32_t height);

/** Width and height of a surface in pixels; both 0 if its description fails. */
SIZE Surface_Size(IDirectDrawSurface* surface);

/** Makes the display of a window for pictures of that size, in the DirectDraw form if the screen supports it. Gives null for a
 *  screen depth that isn't supported, after a message to the user, if the off-screen surface can't be created, or without memory.
 *  Nothing stays allocated then. */
JdecDisplay* Display_Create(HWND window, int32_t width, int32_t height);

/** Releases everything that the display owns, and the record. Null is allowed. */
void Display_Destroy(JdecDisplay* display);

/** Changes the display to the GDI form and returns it. DirectDraw objects made so far stay until Display_Destroy. */
JdecDisplay* Display_Use_GDI(JdecDisplay* display);

/** Adds the number of display devices to *count. Gives the enumeration's result; E_FAIL if DirectDraw or its enumeration is
 *  missing. */
HRESULT Display_Count_Adapters(int32_t* count);
