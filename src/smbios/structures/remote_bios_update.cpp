#include "bytes/text.h"
#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Five BCD bytes: year, month, day, hour, minute.
bool Date(const mira::smbios::StructureView&, const mira::smbios::Value& value,
          mira::smbios::TextOut& out) {
  constexpr std::string_view kBehind[] = {"/", "/", " ", ":", ""};
  for (std::size_t i = 0; i < std::size(kBehind); ++i) {
    out << mira::bytes::HexNumber(value.bytes[i], 2) << kBehind[i];
  }
  return true;
}

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "Minimum Size", "MinSize", Kind::kWord},
    {0x06, "Completion Code", "CompletionCode", Kind::kWord},
    {0x08, "Last Update", "LastUpdate", Kind::kBytes, {.size = 5, .text = Date}},
    {0x0D, "Current Boot Feature Flags", "CurrentBootFeatureFlags", Kind::kByte, {.hex = true}},
    {0x0E, "Characteristics", "Characteristics", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CRemoteBIOSUpdate::kLayout("Remote BIOS Update", "222",
                                                                kFields);
