/* The one palette of screens of 8 bits: the colours of the indices that pixel/dither makes. */
#pragma once

#include "display/context.h"

/** Indices that have a colour. */
constexpr int32_t FirstColor = 16, LastColor = 239;
/** Slots of a palette up to the last colour; the unused ones among them are black. */
constexpr int32_t PaletteSlots = 240;

/** Colour of an index from FirstColor to LastColor, flags 0. */
PALETTEENTRY Palette_Color(int32_t index);

/** Makes and installs the palette, in either form; the last step of the display's creation. On screens of other depths, and when
 * the system refuses, nothing happens. */
void Display_Build_Palette(JdecDisplay* display);

/** Lets the GDI form's palette go. */
void Display_Free_Palette(JdecDisplay* display);

/** Installs the palette again, after another program has changed the screen's; has the window repainted when colours moved. Null,
 *  and a display without a window, are passed over. */
void Display_Reload_Palette(JdecDisplay* display);

/** Fills 256 entries: in the GDI form with the palette's colours, in the DirectDraw form with what the screen holds at this
 * moment. Gives 1; or 0, with the table as it was, for a null argument or a screen of another depth. */
int32_t Display_Export_Palette(const JdecDisplay* display, PALETTEENTRY* table);
