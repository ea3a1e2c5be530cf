/* Memory blocks. Where they come from is settled by the program: it links one implementation of Memory_Alloc and Memory_Free.
 * The library takes them from the system's heap (decode/system_memory.cpp), a program that has the codec alone from malloc
 * (pixel/standard_memory.cpp) or from an allocator of its own. */
#pragma once

#include <cstddef>
#include <cstdint>

/** Gives a block of `size` bytes, aligned for any type and zero-filled if asked, or null without memory. Any thread. */
void* Memory_Alloc(size_t size, bool zeroed);

/** Frees a block of Memory_Alloc. Not called with null. Any thread. */
void Memory_Free(void* block);

/** Without an arena, gives a block of `size` bytes from the heap, not cleared, or null without memory; the caller frees it with
 *  Arena_Free. With an arena (the address of a byte pointer) gives that pointer and advances it by `size`; such a piece is freed
 *  with its block. */
void* Arena_Alloc(size_t size, uint8_t** arena);

/** Arena_Alloc from the heap, zero-filled. */
void* Arena_Alloc_Zeroed(size_t size);

/** Frees a block from the heap. Null is allowed. */
void Arena_Free(void* block);
