/* Memory blocks. A program links one implementation of Memory_Alloc and Memory_Free, which decides where they come from. The
 * library uses the system's heap (decode/system_memory.cpp). A program that has the codec alone uses malloc
 * (pixel/standard_memory.cpp) or its own allocator. */
#pragma once

#include <cstddef>
#include <cstdint>

/** Allocates `size` bytes, aligned for any type, and zero-filled if `zeroed`. Null without memory. Called on any thread. */
void* Memory_Alloc(size_t size, bool zeroed);

/** Frees a block of Memory_Alloc. Never called with null. Called on any thread. */
void Memory_Free(void* block);

/** With a null arena: allocates a block of `size` bytes, not cleared, which the caller frees with Arena_Free; null without
 *  memory. With an arena, which is the address of a pointer into a block: gives that pointer and advances it by `size`. Such a
 *  piece is freed with its block. */
void* Arena_Alloc(size_t size, uint8_t** arena);

/** Allocates a block of `size` zero bytes, which the caller frees with Arena_Free. Null without memory. */
void* Arena_Alloc_Zeroed(size_t size);

/** Frees a block that was allocated. Null is allowed. */
void Arena_Free(void* block);
