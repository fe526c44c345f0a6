#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::StructureView;

constexpr std::size_t kFirst = 5;
constexpr std::size_t kItemSize = 3;
// Shorter than the banner, on purpose.
constexpr std::size_t kClosing = 99;

void ShowItems(const StructureView& s, std::string& out) {
  const std::size_t count = s.Length() > kFirst ? (s.Length() - kFirst) / kItemSize : 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t item = kFirst + i * kItemSize;
    const std::string index = "[" + std::to_string(i) + "] : ";
    out += "Item Type" + index + std::to_string(s.Byte(item)) + '\n';
    out += "Item Handle" + index + std::to_string(s.Word(item + 1)) + '\n';
  }
}

// DSP0134 7.15
constexpr Field kFields[] = {
    {"Group Name", "GroupName", Kind::kString},
};

}  // namespace

constinit const mira::smbios::Layout CGroupAssociations::kLayout("Group Associations", "14",
                                                                 kFields, {.show = ShowItems},
                                                                 kClosing);
