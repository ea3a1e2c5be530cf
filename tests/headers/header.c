/* The public header alone, as C. */
#include "velarto.h"

/* An exported operation has the type that a C program sees. */
int32_t (*const header_as_c)(void) = JDEC_Init;
