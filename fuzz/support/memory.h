#ifndef MIRA_FUZZ_SUPPORT_MEMORY_H_
#define MIRA_FUZZ_SUPPORT_MEMORY_H_

// How much memory a target may hold at once: a fixed part for the machine and the tables of the
// program, and a part that grows with the input.
//
//   const MemoryWatch watch;
//   Parse(input);
//   if (watch.Peak() > kBase + kPerByte * input.size()) Complain();

#include <cstddef>

namespace mira::fuzz {

inline constexpr std::size_t kBase = 16 * 1024 * 1024;
inline constexpr std::size_t kPerByte = 4096;

// One at a time, on one thread.
class MemoryWatch {
 public:
  MemoryWatch();
  // The most that was held at once since then. 0 without the address sanitizer, whose allocator
  // alone tells.
  std::size_t Peak() const;
};

}  // namespace mira::fuzz

#endif  // MIRA_FUZZ_SUPPORT_MEMORY_H_
