/* Memory_Alloc and Memory_Free for programs that have the codec alone: malloc and free. */
#include "pixel/arena.h"

#include <cstdlib>

void* Memory_Alloc(size_t size, bool zeroed) { return zeroed ? std::calloc(1, size) : std::malloc(size); }

void Memory_Free(void* block) { std::free(block); }
