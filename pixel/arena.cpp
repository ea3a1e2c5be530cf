#include "pixel/arena.h"

void* Arena_Alloc(size_t size, uint8_t** arena) {
  if (!arena) return Memory_Alloc(size, false);
  uint8_t* const piece = *arena;
  *arena += size;
  return piece;
}

void* Arena_Alloc_Zeroed(size_t size) { return Memory_Alloc(size, true); }

void Arena_Free(void* block) {
  if (block) Memory_Free(block);
}
