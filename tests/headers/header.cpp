/* The public header alone, as C++. */
#include "velarto.h"

extern int32_t (*const headerAsCxx)();
int32_t (*const headerAsCxx)() = JDEC_Init;
