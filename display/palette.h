/* The palette for screens of 8 bits: the colours of the indices that pixel/dither makes. */
#pragma once

#include "display/context.h"

/** Indices that have a colour. */
constexpr int32_t FirstColor = 16, LastColor = 239;
/** Slots of a palette up to the last colour. Unused ones are black. */
constexpr int32_t PaletteSlots = 240;

/** Colour of an index from FirstColor to LastColor, flags 0. */
PALETTEENTRY Palette_Color(int32_t index);

/** Makes and installs the palette, in either form, while the display is made; the DirectDraw form gets the logical one as well,
 *  for frames that GDI shows. Does nothing on screens of other depths. If the system fails, the display has no palette. */
void Display_Build_Palette(JdecDisplay* display);

/** Gives the window its previous palette again and deletes that of the GDI form. */
void Display_Free_Palette(JdecDisplay* display);

/** Installs the palette again after another program has changed the screen's. In the GDI form the window is invalidated if
 *  colours changed. Does nothing for null or a display without a window. */
void Display_Reload_Palette(JdecDisplay* display);

/** Fills 256 entries: in the GDI form with the palette's colours, in the DirectDraw form with those of the screen. Gives 1; or 0,
 *  with the table unchanged, for a null argument or a screen of another depth. */
int32_t Display_Export_Palette(const JdecDisplay* display, PALETTEENTRY* table);
