/* The desktop that windows are shown on; one file a home. */
#pragma once

#include <string>

/** Can the desktop's windows be those of a screen of another depth? */
bool Desktop_Has_Depths();

/** Makes windows made from now on appear on the user's desktop. bits: depth of the screen that they believe to be on, 8, 15, 16,
 * 24 or 32; 0, and anything where depths can't be chosen: the desktop's own. False, with *error, when there is no desktop. */
bool Desktop_Start(int bits, std::string* error);
void Desktop_Stop();
