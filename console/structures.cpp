#include "console/structures.h"

#include "callif/calling_interface.h"
#include "console/table_file.h"

namespace mira::console {

Structures::Structures(std::vector<std::uint8_t> table) : table_(std::move(table)) {
  is_whole_ = objects_.Parse(table_);
  // The walk ends where the bytes end; without an end-of-table structure only the header tells that
  // there was more.
  if (Find(smbios::kEndOfTable) == nullptr && IsCutShort(table_)) is_whole_ = false;
}

CBIOSObject* Structures::Find(unsigned char type) const {
  const auto found = Objects().find(type);
  return found != Objects().end() ? found->second : nullptr;
}

std::string Structures::Version() const {
  if (table_.size() < smbios::kFirmwareHeaderSize || table_[1] == 0) return "";
  return std::to_string(table_[1]) + "." + std::to_string(table_[2]);
}

std::vector<unsigned> Structures::AnnouncedClasses() const {
  constexpr unsigned char kCallingInterfaceType = 0xDA;
  constexpr unsigned kClasses = 32;
  std::vector<unsigned> classes;
  const auto* const calling = dynamic_cast<const CCallingInterface*>(Find(kCallingInterfaceType));
  for (unsigned i = 0; calling != nullptr && i < kClasses; ++i) {
    if ((calling->SupportedCommands() >> i & 1) != 0) classes.push_back(i);
  }
  return classes;
}

}  // namespace mira::console
