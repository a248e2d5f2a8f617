// Memory: one allocator behind all names, so that each release function takes every block.
#include <signal_tzm/companion.h>

#include <cstddef>
#include <cstdlib>

namespace {

// Blocks begin on a cache line: no vector access to them is split between two.
constexpr size_t kAlignment = 64;

template <class T>
T* Allocate(int32_t count) {
  if (count < 1) return nullptr;
  const size_t bytes = count * sizeof(T);
  return static_cast<T*>(std::aligned_alloc(kAlignment, (bytes + kAlignment - 1) / kAlignment * kAlignment));
}

}  // namespace

void* ORVA_Malloc(int32_t bytes) { return Allocate<Orva8u>(bytes); }
Orva8u* ORVAS_Malloc_8u(int32_t count) { return Allocate<Orva8u>(count); }
Orva16s* ORVAS_Malloc_16s(int32_t count) { return Allocate<Orva16s>(count); }
Orva32f* ORVAS_Malloc_32f(int32_t count) { return Allocate<Orva32f>(count); }
Orva64f* ORVAS_Malloc_64f(int32_t count) { return Allocate<Orva64f>(count); }
void ORVA_Free(void* ptr) { std::free(ptr); }
void ORVAS_Free(void* ptr) { std::free(ptr); }
