#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Five BCD bytes: year, month, day, hour, minute.
bool Date(const mira::smbios::StructureView&, const mira::smbios::Value& value, std::string& out) {
  constexpr char kDigits[] = "0123456789abcdef";
  constexpr std::string_view kBehind[] = {"/", "/", " ", ":", ""};
  for (std::size_t i = 0; i < std::size(kBehind); ++i) {
    out += kDigits[value.bytes[i] / 16];
    out += kDigits[value.bytes[i] % 16];
    out += kBehind[i];
  }
  return true;
}

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"Minimum Size", "MinSize", Kind::kWord},
    {"Completion Code", "CompletionCode", Kind::kWord},
    {"Last Update", "LastUpdate", Kind::kBytes, {.size = 5, .text = Date}},
    {"Current Boot Feature Flags", "CurrentBootFeatureFlags", Kind::kByte, {.hex = true}},
    {"Characteristics", "Characteristics", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CRemoteBIOSUpdate::kLayout("Remote BIOS Update", "222",
                                                                kFields);
