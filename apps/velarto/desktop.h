/* The desktop that windows are shown on; one file a home. */
#pragma once

#include <string>

/** Makes windows made from now on appear on the user's desktop. False, with *error, when there is none. */
bool Desktop_Start(std::string* error);
void Desktop_Stop();
