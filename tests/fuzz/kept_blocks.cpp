// Keeps large heap blocks of the library for the next input: without this a fuzzer would spend most of its time mapping and
// unmapping a decoder's stores. A kept block is poisoned. Of several blocks of a size the one freed first is used again first.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <sanitizer/allocator_interface.h>
#include <sanitizer/asan_interface.h>

extern "C" void* __real_malloc(size_t size);
extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void __real_free(void* block);

namespace {

constexpr size_t Large = 1 << 15, Most = 64;

struct Kept {
  void* block;
  size_t size;
};
Kept kept[Most];
size_t count = 0;
std::mutex guard;

Kept Forget(size_t index) {
  const Kept taken = kept[index];
  std::copy(kept + index + 1, kept + count--, kept + index);
  __asan_unpoison_memory_region(taken.block, taken.size);
  return taken;
}

void* Take(size_t size) {
  const std::lock_guard lock(guard);
  for (size_t i = 0; i < count; ++i) {
    if (kept[i].size == size) return Forget(i).block;
  }
  return nullptr;
}

void Keep(void* block, size_t size) {
  const std::lock_guard lock(guard);
  for (size_t i = 0; i < count; ++i) {
    if (kept[i].block == block) std::fprintf(stderr, "freed twice\n"), std::abort();
  }
  if (count == Most) __real_free(Forget(0).block);
  kept[count++] = {block, size};
  __asan_poison_memory_region(block, size);
}

}  // namespace

extern "C" void* __wrap_malloc(size_t size) {
  void* const block = size >= Large ? Take(size) : nullptr;
  if (block) std::memset(block, 0xBE, 4096);
  return block ? block : __real_malloc(size);
}

extern "C" void* __wrap_calloc(size_t units, size_t size) {
  void* const block = units == 1 && size >= Large ? Take(size) : nullptr;
  return block ? std::memset(block, 0, size) : __real_calloc(units, size);
}

extern "C" void __wrap_free(void* block) {
  const size_t size = block ? __sanitizer_get_allocated_size(block) : 0;
  size >= Large ? Keep(block, size) : __real_free(block);
}
