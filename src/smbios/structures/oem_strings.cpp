#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Decimal;
using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::StructureView;
using mira::smbios::TextOut;

constexpr std::uint8_t kCount = 0x04;

// DSP0134 7.12. The count decides, whatever the set holds: strings beyond it are empty.
constexpr Field kFields[] = {
    {kCount, "Count", nullptr, Kind::kByte},
};

template <typename Use>
void ForEachString(const StructureView& s, Use use) {
  const std::size_t count = s.Byte(kCount);
  std::string_view text = s.String(1);
  for (std::size_t i = 0; i < count; ++i, text = s.NextString(text)) use(i, text);
}

void Show(const StructureView& s, TextOut& out) {
  ForEachString(s, [&out](std::size_t i, std::string_view text) {
    out << "String[" << Decimal(i) << "] : " << text << '\n';
  });
}

void Publish(const StructureView& s, mira::smbios::Attributes& list) {
  ForEachString(s,
                [&list](std::size_t, std::string_view text) { list.emplace_back("String", text); });
}

}  // namespace

constinit const mira::smbios::Layout COEMStrings::kLayout("OEM Strings", "11", kFields,
                                                          {.show = Show, .publish = Publish});
