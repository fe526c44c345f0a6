#include "fuzz/support/memory.h"

#include <algorithm>

#if defined(__SANITIZE_ADDRESS__)
#define MIRA_COUNTS_MEMORY
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MIRA_COUNTS_MEMORY
#endif
#endif

#if defined(MIRA_COUNTS_MEMORY)
// Not every compiler brings the header of these two.
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*on_allocate)(const volatile void* block, std::size_t size),
    void (*on_free)(const volatile void* block));
extern "C" std::size_t __sanitizer_get_allocated_size(const volatile void* block);
#endif

namespace mira::fuzz {
namespace {

std::size_t held = 0;
std::size_t peak = 0;

#if defined(MIRA_COUNTS_MEMORY)

void CountAllocated(const volatile void*, std::size_t size) {
  held += size;
  peak = std::max(peak, held);
}

// What was allocated before the watch began may be given back under it.
void CountFreed(const volatile void* block) {
  if (block != nullptr) held -= std::min(held, __sanitizer_get_allocated_size(block));
}

#endif

}  // namespace

MemoryWatch::MemoryWatch() {
#if defined(MIRA_COUNTS_MEMORY)
  // They cannot be taken away again.
  [[maybe_unused]] static const int hooks =
      __sanitizer_install_malloc_and_free_hooks(CountAllocated, CountFreed);
#endif
  held = 0;
  peak = 0;
}

std::size_t MemoryWatch::Peak() const { return peak; }

}  // namespace mira::fuzz
