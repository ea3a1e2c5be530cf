#include "kernels/cpu.h"

#ifndef VELARTO_KERNELS_ALLOWED
#define VELARTO_KERNELS_ALLOWED 0xFFFFFFFF
#endif

const uint32_t kernelsAllowed = VELARTO_KERNELS_ALLOWED;
