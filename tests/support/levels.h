/* The kernel levels that the tests run. A new level is a line here. */
#pragma once

#include "kernels/kernels.h"

struct TestLevel {
  const char* name;
  uint32_t mask;
};

inline const TestLevel testLevels[] = {
    {"plain", KernelPlain},
};
