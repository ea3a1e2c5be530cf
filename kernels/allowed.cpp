#include "kernels/cpu.h"

/* Set for the libraries of levels/ alone. */
#ifndef VELARTO_KERNELS_ALLOWED
#define VELARTO_KERNELS_ALLOWED 0xFFFFFFFF
#endif

const uint32_t kernelsAllowed = VELARTO_KERNELS_ALLOWED;
