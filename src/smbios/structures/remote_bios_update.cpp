#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
// Five BCD bytes: year, month, day, hour, minute.
bool DateText(const mira::smbios::StructureView& s, std::uint64_t, std::string& out) {
  constexpr std::size_t kOffset = 8;
  constexpr char kDigits[] = "0123456789abcdef";
  constexpr char kBehind[] = {'/', '/', ' ', ':', '\0'};
  for (std::size_t i = 0; i < 5; ++i) {
    out += kDigits[s.Byte(kOffset + i) / 16];
    out += kDigits[s.Byte(kOffset + i) % 16];
    if (kBehind[i] != '\0') out += kBehind[i];
  }
  return true;
}

// Vendor structure
constexpr Field kFields[] = {
    {"Minimum Size", "MinSize", Kind::kWord},
    {"Completion Code", "CompletionCode", Kind::kWord},
    {"Last Update", "LastUpdate", Kind::kBytes, {.size = 5, .text = DateText}},
    {"Current Boot Feature Flags", "CurrentBootFeatureFlags", Kind::kByte, {.hex = true}},
    {"Characteristics", "Characteristics", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CRemoteBIOSUpdate::kLayout("Remote BIOS Update", "222",
                                                                kFields);
