#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::StructureView;

constexpr std::size_t kCount = 4;

// The count decides, whatever the set holds: strings beyond it are empty.
void Show(const StructureView& s, std::string& out) {
  for (std::size_t i = 0; i < s.Byte(kCount); ++i) {
    out.append("String[").append(std::to_string(i)).append("] : ").append(s.String(i + 1)) += '\n';
  }
}

void Publish(const StructureView& s, mira::smbios::Attributes& list) {
  for (std::size_t i = 0; i < s.Byte(kCount); ++i) list.emplace_back("String", s.String(i + 1));
}

// DSP0134 7.12
constexpr Field kFields[] = {
    {"Count", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout COEMStrings::kLayout("OEM Strings", "11", kFields,
                                                          {.show = Show, .publish = Publish});
