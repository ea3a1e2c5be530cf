/* The only face (of fonts) there is. */
#pragma once

#include <span>

/** Where faces with the measures of Courier New are usually installed; the first one found is used. */
std::span<const char* const> Face_Files();
