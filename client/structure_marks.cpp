#include "client/structure_marks.h"

namespace mira::client {

std::set<std::uint16_t> RepeatedHandles(const smbios::Registry& objects) {
  std::set<std::uint16_t> seen;
  std::set<std::uint16_t> repeated;
  for (const auto& [type, head] : objects) {
    for (const CBIOSObject* object = head; object != nullptr; object = object->getNextObj()) {
      if (!seen.insert(object->getHandle()).second) repeated.insert(object->getHandle());
    }
  }
  return repeated;
}

}  // namespace mira::client
