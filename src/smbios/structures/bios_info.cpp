#include <algorithm>

#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Decimal;
using mira::smbios::Field;
using mira::smbios::Hex;
using mira::smbios::Kind;
using mira::smbios::StructureView;
using mira::smbios::TextOut;
using mira::smbios::Value;

bool RomSize(const StructureView&, const Value& value, TextOut& out) {
  out << Decimal((value.number + 1) * 65536);
  return true;
}

// From the highest byte to the lowest, a blank behind each.
bool HighestByteFirst(const StructureView&, const Value& value, TextOut& out) {
  std::for_each(value.bytes.rbegin(), value.bytes.rend(),
                [&out](std::uint8_t byte) { out << Hex(byte) << ' '; });
  return true;
}

bool MajorMinor(const StructureView&, const Value& value, TextOut& out) {
  out << Decimal(value.bytes[0]) << '.' << Decimal(value.bytes[1]);
  return true;
}

// DSP0134 7.1
constexpr Field kFields[] = {
    {0x04, "Vendor", "Vendor", Kind::kString},
    {0x05, "BIOS Version", "BIOSVersion", Kind::kString},
    {0x06, "BIOS St. Addr.", nullptr, Kind::kWord, {.hex = true}},
    {0x08, "BIOS Release Date", "BIOSReleaseDate", Kind::kString},
    {0x09, "BIOS ROM Size", nullptr, Kind::kByte, {.unit = " Bytes", .text = RomSize}},
    {0x0A, "BIOS Characteristcs", nullptr, Kind::kBytes, {.size = 8, .text = HighestByteFirst}},
    {0x12, "BIOS Characteristics Extension Byte 1", nullptr, Kind::kByte, {.hex = true}},
    {0x13, "BIOS Characteristics Extension Byte 2", nullptr, Kind::kByte, {.hex = true}},
    {0x14, "BIOS Release", "BIOSRelease", Kind::kBytes, {.size = 2, .text = MajorMinor}},
    {0x16, "BIOS Firmware Version", nullptr, Kind::kBytes, {.size = 2, .text = MajorMinor}},
};

}  // namespace

constinit const mira::smbios::Layout CBIOSInfo::kLayout("BIOS Information", "0", kFields);
