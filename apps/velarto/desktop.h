/* The desktop that windows are shown on; one file per platform. */
#pragma once

#include <string>

/** Can the desktop's windows be those of a screen of another depth? */
bool Desktop_Has_Depths();

/** From now on new windows appear on the user's desktop. bits: depth of the screen that they see, 8, 15, 16, 24 or 32; 0, and any
 * value where depths can't be chosen: the desktop's own. False, with *error, when there is no desktop. */
bool Desktop_Start(int bits, std::string* error);
void Desktop_Stop();
