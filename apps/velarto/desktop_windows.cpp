#include "apps/velarto/desktop.h"

bool Desktop_Start(std::string*) { return true; }

void Desktop_Stop() {}
