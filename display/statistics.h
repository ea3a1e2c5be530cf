/* The frame rate and the bit rate, drawn as texts over the shown picture. */
#pragma once

#include "display/context.h"

/** Turns both texts on or off. They are off in a new display, and so after a change of the picture's size. Null is allowed. */
void Display_Show_Statistics(JdecDisplay* display, bool show);

/** Stores the bit-rate text, at most 31 characters, and zeros after it. */
void Set_OSD_Text(JdecDisplay* display, const char* text);

/** Counts a frame and draws the frame rate, at most 30.00, at the window's upper right corner. In a disabled window nothing is
 *  counted or drawn. Without a device context the frame is counted. */
void Display_Draw_Fps_Text(JdecDisplay* display);

/** Draws the bit-rate text at the window's lower right corner, in the DirectDraw form only. */
void Display_Draw_Bitrate_Text(const JdecDisplay* display);
