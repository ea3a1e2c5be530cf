#include "apps/velarto/desktop.h"
#include "platform/sdl/sdl_desktop.h"

bool Desktop_Start(std::string* error) { return Sdl_Desktop_Start(error); }

void Desktop_Stop() { Sdl_Desktop_Stop(); }
