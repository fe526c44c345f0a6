// Memory arrays and their slots.

#include <iterator>

#include "client/inventory_parts.h"

namespace mira::client {
namespace {

constexpr CodeName kLocations[] = {{0x01, "Other"},
                                   {0x02, "Unknown"},
                                   {0x03, "System Board Or Motherboard"},
                                   {0x04, "ISA Add-on Card"},
                                   {0x05, "EISA Add-on Card"},
                                   {0x06, "PCI Add-on Card"},
                                   {0x07, "MCA Add-on Card"},
                                   {0x08, "PCMCIA Add-on Card"},
                                   {0x09, "Proprietary Add-on Card"},
                                   {0x0A, "NuBus"},
                                   {0xA0, "PC-98/C20 Add-on Card"},
                                   {0xA1, "PC-98/C24 Add-on Card"},
                                   {0xA2, "PC-98/E Add-on Card"},
                                   {0xA3, "PC-98/Local Bus Add-on Card"},
                                   {0xA4, "CXL Add-on Card"}};
constexpr const char* kUses[] = {"Other",        "Unknown",      "System Memory",
                                 "Video Memory", "Flash Memory", "Non-volatile RAM",
                                 "Cache Memory"};
constexpr const char* kErrorCorrection[] = {"Other",          "Unknown",       "None", "Parity",
                                            "Single-bit ECC", "Multi-bit ECC", "CRC"};
constexpr const char* kFormFactors[] = {
    "Other", "Unknown", "SIMM",         "SIP",  "Chip",   "DIP",   "ZIP",     "Proprietary Card",
    "DIMM",  "TSOP",    "Row Of Chips", "RIMM", "SODIMM", "SRIMM", "FB-DIMM", "Die",
    "CAMM"};
constexpr CodeName kTypes[] = {
    {0x01, "Other"},  {0x02, "Unknown"}, {0x03, "DRAM"},   {0x04, "EDRAM"},
    {0x05, "VRAM"},   {0x06, "SRAM"},    {0x07, "RAM"},    {0x08, "ROM"},
    {0x09, "Flash"},  {0x0A, "EEPROM"},  {0x0B, "FEPROM"}, {0x0C, "EPROM"},
    {0x0D, "CDRAM"},  {0x0E, "3DRAM"},   {0x0F, "SDRAM"},  {0x10, "SGRAM"},
    {0x11, "RDRAM"},  {0x12, "DDR"},     {0x13, "DDR2"},   {0x14, "DDR2 FB-DIMM"},
    {0x18, "DDR3"},   {0x19, "FBD2"},    {0x1A, "DDR4"},   {0x1B, "LPDDR"},
    {0x1C, "LPDDR2"}, {0x1D, "LPDDR3"},  {0x1E, "LPDDR4"}, {0x1F, "Logical non-volatile device"},
    {0x20, "HBM"},    {0x21, "HBM2"},    {0x22, "DDR5"},   {0x23, "LPDDR5"},
    {0x24, "HBM3"}};
constexpr const char* kTechnologies[] = {"Other",
                                         "Unknown",
                                         "DRAM",
                                         "NVDIMM-N",
                                         "NVDIMM-F",
                                         "NVDIMM-P",
                                         "Intel Optane persistent memory"};
// From bit 1 on.
constexpr const char* kDetails[] = {"Other",
                                    "Unknown",
                                    "Fast-paged",
                                    "Static Column",
                                    "Pseudo-static",
                                    "RAMBus",
                                    "Synchronous",
                                    "CMOS",
                                    "EDO",
                                    "Window DRAM",
                                    "Cache DRAM",
                                    "Non-Volatile",
                                    "Registered (Buffered)",
                                    "Unbuffered (Unregistered)",
                                    "LRDIMM"};

void ReadSize(const StructureFields& fields, MemorySlot& slot) {
  constexpr std::uint64_t kKibPerMib = 1024;
  const auto size = fields.Word(0x0C);
  if (!size) return;
  slot.is_populated = *size != 0;
  if (*size == 0 || *size == 0xFFFF) return;
  const auto extended = fields.DWord(0x1C);
  if (*size == 0x7FFF && extended) {
    slot.size_mib = *extended & 0x7FFFFFFF;
  } else if ((*size & 0x8000) == 0) {
    slot.size_mib = *size;
  } else if (const std::uint64_t kib = *size & 0x7FFF; kib % kKibPerMib == 0) {
    slot.size_mib = kib / kKibPerMib;
  } else {
    slot.size_kib = kib;
  }
}

// What the first field cannot hold stands in the second; 0 is unknown.
OptionalNumber Speed(const StructureFields& fields, std::size_t first, std::size_t second) {
  const auto speed = fields.Known(first, 2, {0});
  if (speed != 0xFFFF) return speed;
  const auto extended = fields.DWord(second);
  if (!extended || (*extended & 0x7FFFFFFF) == 0) return std::nullopt;
  return *extended & 0x7FFFFFFF;
}

}  // namespace

MemoryArray ReadMemoryArray(const StructureFields& fields) {
  constexpr std::uint32_t kSeeExtended = 0x80000000;
  MemoryArray array;
  if (const auto code = fields.Byte(0x04)) array.location = NameOf(kLocations, *code);
  if (const auto code = fields.Byte(0x05)) array.use = NameOf(kUses, 1, *code);
  if (const auto code = fields.Byte(0x06)) {
    array.error_correction = NameOf(kErrorCorrection, 1, *code);
  }
  const auto capacity = fields.DWord(0x07);
  if (capacity && *capacity != kSeeExtended) {
    array.max_capacity_kib = *capacity;
  } else if (const auto bytes = capacity ? fields.QWord(0x0F) : std::nullopt) {
    array.max_capacity_kib = *bytes / 1024;
  }
  array.slots = fields.Word(0x0D);
  return array;
}

MemorySlot ReadMemorySlot(const StructureFields& fields) {
  MemorySlot slot;
  slot.total_width_bits = fields.Known(0x08, 2, {0, 0xFFFF});
  slot.data_width_bits = fields.Known(0x0A, 2, {0, 0xFFFF});
  ReadSize(fields, slot);
  if (const auto code = fields.Byte(0x0E)) slot.form_factor = NameOf(kFormFactors, 1, *code);
  slot.locator = fields.String(0x10);
  slot.bank_locator = fields.String(0x11);
  if (const auto code = fields.Byte(0x12)) slot.type = NameOf(kTypes, *code);
  for (std::size_t i = 0; i < std::size(kDetails); ++i) {
    if ((fields.Word(0x13).value_or(0) >> (i + 1) & 1) != 0) slot.details.emplace_back(kDetails[i]);
  }
  slot.speed_mts = Speed(fields, 0x15, 0x54);
  slot.manufacturer = fields.String(0x17);
  slot.serial_number = fields.String(0x18);
  slot.asset_tag = fields.String(0x19);
  slot.part_number = fields.String(0x1A);
  if (const auto attributes = fields.Byte(0x1B); attributes && (*attributes & 0x0F) != 0) {
    slot.ranks = *attributes & 0x0F;
  }
  slot.configured_speed_mts = Speed(fields, 0x20, 0x58);
  slot.min_voltage_mv = fields.Known(0x22, 2, {0});
  slot.max_voltage_mv = fields.Known(0x24, 2, {0});
  slot.configured_voltage_mv = fields.Known(0x26, 2, {0});
  if (const auto code = fields.Byte(0x28)) slot.technology = NameOf(kTechnologies, 1, *code);
  slot.firmware_version = fields.String(0x2B);
  return slot;
}

}  // namespace mira::client
