/* Texts about the stream, laid over the shown picture, straight on the screen. */
#pragma once

#include "display/context.h"

/** Switches both texts on, or off with 0; off at first, and again after a change of the picture's size. */
void Display_Show_Statistics(JdecDisplay* display, int32_t show);

/** Stores the bit-rate text: at most 31 characters, the rest zeros. */
void Set_OSD_Text(JdecDisplay* display, const char* text);

/** Counts a frame and draws the frame rate, 30.00 at most, at the window's upper right corner. In a disabled window nothing is
 *  counted or drawn; without a device context it is counted. */
void Display_Draw_Fps_Text(JdecDisplay* display);

/** Draws the bit-rate text at the window's lower right corner, in the DirectDraw form alone. */
void Display_Draw_Bitrate_Text(const JdecDisplay* display);
