#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Decimal;
using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::StructureView;
using mira::smbios::TextOut;
using mira::smbios::Value;

constexpr std::uint8_t kSize = 0x0C;
constexpr std::uint8_t kExtendedSize = 0x1C;
constexpr std::uint16_t kSizeIsExtended = 0x7FFF;
constexpr std::uint16_t kKilobytes = 0x8000;

// The names of both lists stand as hosts know them.
constexpr const char* kFormFactors[] = {
    "Unknown",          "Other", "Unknown", "SIMM",         "SIP",  "Chip",   "DIP",   "ZIP",
    "Proprietary Card", "DIMM",  "TSOP",    "Row if Chips", "RIMM", "SODIMM", "SRIMM", "FB-DIMM"};

constexpr const char* kMemoryTypes[] = {
    "Unknown", "Other", "Unknown", "DRAM",   "EDRAMr",       "VRAM",   "SRAM",  "RAM",
    "ROM",     "FALSH", "EEPROM",  "FEPROM", "EPROM",        "CDRAM",  "3DRAM", "SDRAM",
    "SGRAM",   "RDRAM", "DDR",     "DDR2",   "DDR2 FB-DIMM", "",       "",      "",
    "DDR3",    "FBD2",  "DDR4",    "LPDDR",  "LPDDR2",       "LPDDR3", "LPDDR4"};

template <std::size_t N>
bool Name(const char* const (&names)[N], std::uint64_t value, TextOut& out) {
  out << (value < N ? names[value] : "Unknown");
  return true;
}

bool FormFactorName(const StructureView&, const Value& value, TextOut& out) {
  return Name(kFormFactors, value.number, out);
}

bool MemoryTypeName(const StructureView&, const Value& value, TextOut& out) {
  return Name(kMemoryTypes, value.number, out);
}

bool HasExtendedSize(const StructureView& s) { return s.Word(kSize) == kSizeIsExtended; }
bool HasPlainSize(const StructureView& s) { return !HasExtendedSize(s); }

bool Size(const StructureView&, const Value& value, TextOut& out) {
  out << Decimal(value.number & ~std::uint64_t{kKilobytes})
      << ((value.number & kKilobytes) != 0 ? "KB" : "MB");
  return true;
}

// The published extended size has a blank before its unit, the shown one has none.
bool PublishedSize(const StructureView& s, const Value& value, TextOut& out) {
  if (!HasExtendedSize(s)) return Size(s, value, out);
  out << Decimal(s.DWord(kExtendedSize)) << " MB";
  return true;
}

// DSP0134 7.18
constexpr Field kFields[] = {
    {0x04, "Memeory Array Handle", nullptr, Kind::kWord},
    {0x06, "Memeory Error Information Handle", nullptr, Kind::kWord},
    {0x08, "Total Width", "TotalWidth", Kind::kWord, {.rank = 1}},
    {0x0A, "Data Width", "DataWidth", Kind::kWord, {.rank = 2}},
    {kSize,
     "Size",
     "Size",
     Kind::kWord,
     {.text = Size, .published = PublishedSize, .shown = HasPlainSize, .rank = 3}},
    {0x0E, "Form Factor", "FormFactor", Kind::kByte, {.text = FormFactorName, .rank = 4}},
    {0x0F, "Device Set", nullptr, Kind::kByte},
    {0x10, "Device Locator", "DeviceLocator", Kind::kString, {.rank = 12}},
    {0x11, "Bank Locator", "BankLocator", Kind::kString, {.rank = 5}},
    {0x12, "Memory Type", "MemoryType", Kind::kByte, {.text = MemoryTypeName, .rank = 6}},
    {0x13, "Type Detail", nullptr, Kind::kWord, {.hex = true}},
    {0x15, "Speed", "Speed", Kind::kWord, {.unit = "MHz", .rank = 7}},
    {0x17, "Manufacturer ID", "ManufacturerID", Kind::kString, {.rank = 8}},
    {0x18, "DIMM Serial Number", "DIMMSerialNumber", Kind::kString, {.rank = 9}},
    {0x19, "Asset Tag", "AssetTag", Kind::kString, {.rank = 10}},
    {0x1A, "Part Number", "PartNumber", Kind::kString, {.rank = 11}},
    {0x1B, "Attributes", nullptr, Kind::kByte, {.hex = true}},
    {kExtendedSize, "Size", nullptr, Kind::kDWord, {.unit = "MB", .shown = HasExtendedSize}},
    {0x20,
     "Configured Memory Clock Speed",
     "ClockSpeed",
     Kind::kWord,
     {.unit = "MHz", .bare = true, .rank = 13}},
};

}  // namespace

constinit const mira::smbios::Layout CMemoryDevice::kLayout("Memory Device", "17", kFields);
