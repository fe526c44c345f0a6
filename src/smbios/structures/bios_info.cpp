#include <algorithm>

#include "smbios/structures/structures.h"

namespace {

using mira::smbios::AppendDecimal;
using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::StructureView;
using mira::smbios::Value;

bool RomSize(const StructureView&, const Value& value, std::string& out) {
  AppendDecimal(out, (value.number + 1) * 65536);
  return true;
}

// From the highest byte to the lowest, a blank behind each.
bool HighestByteFirst(const StructureView&, const Value& value, std::string& out) {
  std::for_each(value.bytes.rbegin(), value.bytes.rend(), [&out](std::uint8_t byte) {
    mira::smbios::AppendHex(out, byte);
    out += ' ';
  });
  return true;
}

bool MajorMinor(const StructureView&, const Value& value, std::string& out) {
  AppendDecimal(out, value.bytes[0]);
  out += '.';
  AppendDecimal(out, value.bytes[1]);
  return true;
}

// DSP0134 7.1
constexpr Field kFields[] = {
    {"Vendor", "Vendor", Kind::kString},
    {"BIOS Version", "BIOSVersion", Kind::kString},
    {"BIOS St. Addr.", nullptr, Kind::kWord, {.hex = true}},
    {"BIOS Release Date", "BIOSReleaseDate", Kind::kString},
    {"BIOS ROM Size", nullptr, Kind::kByte, {.unit = " Bytes", .text = RomSize}},
    {"BIOS Characteristcs", nullptr, Kind::kBytes, {.size = 8, .text = HighestByteFirst}},
    {"BIOS Characteristics Extension Byte 1", nullptr, Kind::kByte, {.hex = true}},
    {"BIOS Characteristics Extension Byte 2", nullptr, Kind::kByte, {.hex = true}},
    {"BIOS Release", "BIOSRelease", Kind::kBytes, {.size = 2, .text = MajorMinor}},
    {"BIOS Firmware Version", nullptr, Kind::kBytes, {.size = 2, .text = MajorMinor}},
};

}  // namespace

constinit const mira::smbios::Layout CBIOSInfo::kLayout("BIOS Information", "0", kFields);
