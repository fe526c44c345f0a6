#ifndef MIRA_PLDM_NAME_INDEX_H_
#define MIRA_PLDM_NAME_INDEX_H_

// The handle that belongs to each name. Names are kept as places in a text that only grows, in one
// table with open addressing, so that tens of thousands cost neither memory blocks nor long ways of
// their own.
//
//   NameIndex names;
//   names.Put(characters, {offset, length}, handle);
//   if (const auto handle = names.Find(characters, "WakeOnLan")) Use(*handle);

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace mira::pldm {

class NameIndex {
 public:
  struct Place {
    std::uint32_t offset;  // not 0
    std::uint16_t length;
  };

  // `characters` is the text of all places so far, this one's included. Replaces the handle of an
  // equal name.
  void Put(std::string_view characters, Place name, std::uint16_t handle) {
    if (2 * count_ >= slots_.size()) Grow();
    const std::string_view text = characters.substr(name.offset, name.length);
    Slot& slot = slots_[SlotOf(Hash(text), characters, text)];
    if (slot.name.offset == 0) {
      slot = {Hash(text), name, handle};
      ++count_;
    }
    slot.handle = handle;
  }

  std::optional<std::uint16_t> Find(std::string_view characters, std::string_view name) const {
    if (slots_.empty()) return std::nullopt;
    const Slot& slot = slots_[SlotOf(Hash(name), characters, name)];
    return slot.name.offset != 0 ? std::optional(slot.handle) : std::nullopt;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    Place name = {0, 0};
    std::uint16_t handle = 0;
  };

  static std::uint32_t Hash(std::string_view name) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>{}(name));
  }

  // The slot of the name, or the free one where it would be put. One slot is always free.
  std::size_t SlotOf(std::uint32_t hash, std::string_view characters, std::string_view name) const {
    std::size_t at = hash & (slots_.size() - 1);
    while (slots_[at].name.offset != 0 &&
           (slots_[at].hash != hash ||
            characters.substr(slots_[at].name.offset, slots_[at].name.length) != name)) {
      at = (at + 1) & (slots_.size() - 1);
    }
    return at;
  }

  void Grow() {
    constexpr std::size_t kFirstSize = 64;  // a power of two, as all are
    std::vector<Slot> larger(slots_.empty() ? kFirstSize : 2 * slots_.size());
    for (const Slot& slot : slots_) {
      if (slot.name.offset == 0) continue;
      std::size_t at = slot.hash & (larger.size() - 1);
      while (larger[at].name.offset != 0) at = (at + 1) & (larger.size() - 1);
      larger[at] = slot;
    }
    slots_ = std::move(larger);
  }

  std::vector<Slot> slots_;
  std::size_t count_ = 0;
};

}  // namespace mira::pldm

#endif  // MIRA_PLDM_NAME_INDEX_H_
