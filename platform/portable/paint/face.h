/* The one face there is. */
#pragma once

#include <span>

/** Where faces with the measures of Courier New usually lie; the first one found is taken. */
std::span<const char* const> Face_Files();
