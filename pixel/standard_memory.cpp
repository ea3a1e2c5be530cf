/* Memory for programs that have the codec alone: the C library's. */
#include "pixel/arena.h"

#include <cstdlib>

void* Memory_Alloc(size_t size, bool zeroed) { return zeroed ? std::calloc(1, size) : std::malloc(size); }

void Memory_Free(void* block) { std::free(block); }
