/* The screen that painting works for. For the files of the layer alone. */
#pragma once

#include "platform/portable/desktop.h"
#include "platform/portable/paint/pixels.h"

struct ScreenState {
  bool on;  ///< There is a screen.
  ScreenSetup setup;
  uint32_t colors[256];  ///< What the indices of an 8-bit screen show.
  int32_t losses;        ///< How often all surfaces were lost; a surface that has seen fewer is lost.
};
extern ScreenState screenState;

/** The screen's format; bits is 0 where there is none, or one of a depth without pixels. */
ColorFormat Screen_Format();

/** Sets the colours that an 8-bit screen starts with. */
void Set_Start_Colors();
/** Installs colours on an 8-bit screen, from the eleventh on; gives how many of the screen's changed. */
UINT Install_Colors(const uint32_t* colors, size_t count);
