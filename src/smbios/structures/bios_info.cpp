#include "smbios/structures/structures.h"

namespace {

using mira::smbios::AppendDecimal;
using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::StructureView;

constexpr std::size_t kCharacteristics = 10;
constexpr std::size_t kSystemRelease = 20;
constexpr std::size_t kControllerRelease = 22;

bool RomSizeText(const StructureView&, std::uint64_t value, std::string& out) {
  AppendDecimal(out, (value + 1) * 65536);
  return true;
}

// From the highest byte to the lowest.
bool CharacteristicsText(const StructureView& s, std::uint64_t, std::string& out) {
  for (std::size_t i = 8; i-- > 0;)
    mira::smbios::AppendHexBytes(out, s.Bytes(kCharacteristics + i, 1));
  return true;
}

bool Release(const StructureView& s, std::size_t offset, std::string& out) {
  AppendDecimal(out, s.Byte(offset));
  out += '.';
  AppendDecimal(out, s.Byte(offset + 1));
  return true;
}

bool SystemReleaseText(const StructureView& s, std::uint64_t, std::string& out) {
  return Release(s, kSystemRelease, out);
}

bool ControllerReleaseText(const StructureView& s, std::uint64_t, std::string& out) {
  return Release(s, kControllerRelease, out);
}

// DSP0134 7.1
constexpr Field kFields[] = {
    {"Vendor", "Vendor", Kind::kString},
    {"BIOS Version", "BIOSVersion", Kind::kString},
    {"BIOS St. Addr.", nullptr, Kind::kWord, {.hex = true}},
    {"BIOS Release Date", "BIOSReleaseDate", Kind::kString},
    {"BIOS ROM Size", nullptr, Kind::kByte, {.unit = " Bytes", .text = RomSizeText}},
    {"BIOS Characteristcs", nullptr, Kind::kBytes, {.size = 8, .text = CharacteristicsText}},
    {"BIOS Characteristics Extension Byte 1", nullptr, Kind::kByte, {.hex = true}},
    {"BIOS Characteristics Extension Byte 2", nullptr, Kind::kByte, {.hex = true}},
    {"BIOS Release", "BIOSRelease", Kind::kBytes, {.size = 2, .text = SystemReleaseText}},
    {"BIOS Firmware Version", nullptr, Kind::kBytes, {.size = 2, .text = ControllerReleaseText}},
};

}  // namespace

constinit const mira::smbios::Layout CBIOSInfo::kLayout("BIOS Information", "0", kFields);
