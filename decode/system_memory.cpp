/* Memory_Alloc and Memory_Free of the library: the system's heap. */
#include "pixel/arena.h"

#include "platform/win32.h"

void* Memory_Alloc(size_t size, bool zeroed) { return HeapAlloc(GetProcessHeap(), zeroed ? HEAP_ZERO_MEMORY : 0, size); }

void Memory_Free(void* block) { HeapFree(GetProcessHeap(), 0, block); }
