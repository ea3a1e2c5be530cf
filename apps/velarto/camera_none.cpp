#include "apps/velarto/commands.h"

void Camera_Command(CLI::App*, int*) {}
