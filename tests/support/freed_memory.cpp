#include "tests/support/freed_memory.h"

#if defined(__SANITIZE_ADDRESS__)
#define MIRA_WATCHES_FREED_MEMORY
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MIRA_WATCHES_FREED_MEMORY
#endif
#endif

#include <algorithm>
#include <cstddef>

#if defined(MIRA_WATCHES_FREED_MEMORY)
// Not every compiler brings the header of these two.
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*on_allocate)(const volatile void* block, std::size_t size),
    void (*on_free)(const volatile void* block));
extern "C" std::size_t __sanitizer_get_allocated_size(const volatile void* block);
#endif

namespace mira::test {
namespace {

// Read while memory is given back, so nothing here may ask for any. A copy of the secret would be
// found itself.
const char* secret_begin = nullptr;
const char* secret_end = nullptr;
int finds = 0;
int blocks = 0;
std::size_t wanted_size = 0;

#if defined(MIRA_WATCHES_FREED_MEMORY)

void OnFree(const volatile void* block) {
  if (secret_begin == nullptr || block == nullptr) return;
  const auto* const begin = static_cast<const char*>(const_cast<const void*>(block));
  const std::size_t size = __sanitizer_get_allocated_size(begin);
  if (wanted_size != 0 && size != wanted_size) return;
  const char* const end = begin + size;
  ++blocks;
  if (std::search(begin, end, secret_begin, secret_end) != end) ++finds;
}

void OnAllocate(const volatile void*, std::size_t) {}

#endif

}  // namespace

FreedMemoryWatch::FreedMemoryWatch(const std::string& secret, [[maybe_unused]] std::size_t size) {
#if defined(MIRA_WATCHES_FREED_MEMORY)
  // They cannot be taken away again.
  [[maybe_unused]] static const int hooks =
      __sanitizer_install_malloc_and_free_hooks(OnAllocate, OnFree);
#endif
  finds = 0;
  blocks = 0;
  wanted_size = size;
  secret_end = secret.data() + secret.size();
  secret_begin = secret.data();
}

FreedMemoryWatch::~FreedMemoryWatch() { secret_begin = nullptr; }

bool FreedMemoryWatch::IsAvailable() {
#if defined(MIRA_WATCHES_FREED_MEMORY)
  return true;
#else
  return false;
#endif
}

int FreedMemoryWatch::Finds() const { return finds; }

int FreedMemoryWatch::Blocks() const { return blocks; }

}  // namespace mira::test
