#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::StructureView;

// DSP0134 7.12. The count decides, whatever the set holds: strings beyond it are empty.
constexpr Field kFields[] = {
    {"Count", nullptr, Kind::kByte},
};

template <typename Use>
void ForEachString(const StructureView& s, Use use) {
  const std::size_t count = s.Byte(4);
  std::string_view text = s.String(1);
  for (std::size_t i = 0; i < count; ++i, text = s.NextString(text)) use(i, text);
}

void Show(const StructureView& s, std::string& out) {
  ForEachString(s, [&out](std::size_t i, std::string_view text) {
    out.append("String[").append(std::to_string(i)).append("] : ").append(text) += '\n';
  });
}

void Publish(const StructureView& s, mira::smbios::Attributes& list) {
  ForEachString(s,
                [&list](std::size_t, std::string_view text) { list.emplace_back("String", text); });
}

}  // namespace

constinit const mira::smbios::Layout COEMStrings::kLayout("OEM Strings", "11", kFields,
                                                          {.show = Show, .publish = Publish});
