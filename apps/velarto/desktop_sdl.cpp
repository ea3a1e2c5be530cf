#include "apps/velarto/desktop.h"
#include "platform/sdl/sdl_desktop.h"

bool Desktop_Has_Depths() { return true; }

bool Desktop_Start(int bits, std::string* error) { return Sdl_Desktop_Start(bits, error); }

void Desktop_Stop() { Sdl_Desktop_Stop(); }
