#include "apps/velarto/desktop.h"

bool Desktop_Has_Depths() { return false; }

bool Desktop_Start(int, std::string*) { return true; }

void Desktop_Stop() {}
