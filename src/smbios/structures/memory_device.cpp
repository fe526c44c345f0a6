#include "smbios/structures/structures.h"

namespace {

using mira::smbios::AppendDecimal;
using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::StructureView;
using mira::smbios::Value;

constexpr std::size_t kSize = 12;
constexpr std::size_t kExtendedSize = 28;
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
bool Name(const char* const (&names)[N], std::uint64_t value, std::string& out) {
  out += value < N ? names[value] : "Unknown";
  return true;
}

bool FormFactorName(const StructureView&, const Value& value, std::string& out) {
  return Name(kFormFactors, value.number, out);
}

bool MemoryTypeName(const StructureView&, const Value& value, std::string& out) {
  return Name(kMemoryTypes, value.number, out);
}

bool HasExtendedSize(const StructureView& s) { return s.Word(kSize) == kSizeIsExtended; }
bool HasPlainSize(const StructureView& s) { return !HasExtendedSize(s); }

bool Size(const StructureView&, const Value& value, std::string& out) {
  AppendDecimal(out, value.number & ~std::uint64_t{kKilobytes});
  out += (value.number & kKilobytes) != 0 ? "KB" : "MB";
  return true;
}

// The published extended size has a blank before its unit, the shown one has none.
bool PublishedSize(const StructureView& s, const Value& value, std::string& out) {
  if (!HasExtendedSize(s)) return Size(s, value, out);
  AppendDecimal(out, s.DWord(kExtendedSize));
  out += " MB";
  return true;
}

// DSP0134 7.18
constexpr Field kFields[] = {
    {"Memeory Array Handle", nullptr, Kind::kWord},
    {"Memeory Error Information Handle", nullptr, Kind::kWord},
    {"Total Width", "TotalWidth", Kind::kWord, {.rank = 1}},
    {"Data Width", "DataWidth", Kind::kWord, {.rank = 2}},
    {"Size",
     "Size",
     Kind::kWord,
     {.text = Size, .published = PublishedSize, .shown = HasPlainSize, .rank = 3}},
    {"Form Factor", "FormFactor", Kind::kByte, {.text = FormFactorName, .rank = 4}},
    {"Device Set", nullptr, Kind::kByte},
    {"Device Locator", "DeviceLocator", Kind::kString, {.rank = 12}},
    {"Bank Locator", "BankLocator", Kind::kString, {.rank = 5}},
    {"Memory Type", "MemoryType", Kind::kByte, {.text = MemoryTypeName, .rank = 6}},
    {"Type Detail", nullptr, Kind::kWord, {.hex = true}},
    {"Speed", "Speed", Kind::kWord, {.unit = "MHz", .rank = 7}},
    {"Manufacturer ID", "ManufacturerID", Kind::kString, {.rank = 8}},
    {"DIMM Serial Number", "DIMMSerialNumber", Kind::kString, {.rank = 9}},
    {"Asset Tag", "AssetTag", Kind::kString, {.rank = 10}},
    {"Part Number", "PartNumber", Kind::kString, {.rank = 11}},
    {"Attributes", nullptr, Kind::kByte, {.hex = true}},
    {"Size", nullptr, Kind::kDWord, {.unit = "MB", .shown = HasExtendedSize}},
    {"Configured Memory Clock Speed",
     "ClockSpeed",
     Kind::kWord,
     {.unit = "MHz", .bare = true, .rank = 13}},
};

}  // namespace

constinit const mira::smbios::Layout CMemoryDevice::kLayout("Memory Device", "17", kFields);
