#ifndef MIRA_PLDM_HANDLE_INDEX_H_
#define MIRA_PLDM_HANDLE_INDEX_H_

// Maps 16-bit handles to objects. Handles lie close together as a rule, so the index is an
// array in pages that are made when they are needed: a look-up is two steps, and scattered handles
// cost a bounded amount of memory.
//
//   HandleIndex<std::unique_ptr<Thing>> things;  // a T that is false stands for none
//   things[0x20] = std::make_unique<Thing>();
//   if (const auto* found = things.Find(0x20)) Use(**found);

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace mira::pldm {

template <typename T>
class HandleIndex {
 public:
  T& operator[](std::uint16_t handle) {
    std::unique_ptr<Page>& page = pages_[handle / kPageSize];
    if (!page) page = std::make_unique<Page>();
    return (*page)[handle % kPageSize];
  }

  // Null where there is none.
  const T* Find(std::uint16_t handle) const {
    const std::unique_ptr<Page>& page = pages_[handle / kPageSize];
    return page && (*page)[handle % kPageSize] ? &(*page)[handle % kPageSize] : nullptr;
  }

  // In ascending order of handles.
  template <typename Use>
  void ForEach(Use use) const {
    for (const std::unique_ptr<Page>& page : pages_) {
      if (!page) continue;
      for (const T& object : *page) {
        if (object) use(object);
      }
    }
  }

 private:
  static constexpr std::size_t kPageSize = 256;
  using Page = std::array<T, kPageSize>;
  std::array<std::unique_ptr<Page>, 0x10000 / kPageSize> pages_;
};

}  // namespace mira::pldm

#endif  // MIRA_PLDM_HANDLE_INDEX_H_
