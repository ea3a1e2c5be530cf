/* Tables of the fast decoding, made at compile time from the four codes. */
#pragma once

#include "kernels/kernels.h"

extern const StripTables stripTables;
