// Processors and caches.

#include "bytes/text.h"
#include "client/inventory_parts.h"

namespace mira::client {
namespace {

constexpr const char* kProcessorTypes[] = {"Other",          "Unknown",       "Central Processor",
                                           "Math Processor", "DSP Processor", "Video Processor"};
constexpr const char* kProcessorStatus[] = {"Unknown",          "Enabled", "Disabled By User",
                                            "Disabled By BIOS", "Idle",    "Reserved",
                                            "Reserved",         "Other"};
constexpr const char* kCacheModes[] = {"Write Through", "Write Back", "Varies With Memory Address",
                                       "Unknown"};
constexpr const char* kCacheLocations[] = {"Internal", "External", "Reserved", "Unknown"};
constexpr const char* kCacheTypes[] = {"Other", "Unknown", "Instruction", "Data", "Unified"};
constexpr const char* kCacheErrorCorrection[] = {"Other",  "Unknown",        "None",
                                                 "Parity", "Single-bit ECC", "Multi-bit ECC"};
constexpr const char* kAssociativities[] = {"Other",
                                            "Unknown",
                                            "Direct Mapped",
                                            "2-way Set-associative",
                                            "4-way Set-associative",
                                            "Fully Associative",
                                            "8-way Set-associative",
                                            "16-way Set-associative",
                                            "12-way Set-associative",
                                            "24-way Set-associative",
                                            "32-way Set-associative",
                                            "48-way Set-associative",
                                            "64-way Set-associative",
                                            "20-way Set-associative"};

// The second field counts where it is there, for the values that the first cannot hold at the
// least.
OptionalText Family(const StructureFields& fields) {
  constexpr std::uint8_t kSeeSecond = 0xFE;
  const auto first = fields.Byte(0x06);
  if (!first) return std::nullopt;
  const auto second = fields.Word(0x28);
  if (*first == kSeeSecond && !second) return std::nullopt;
  const std::uint16_t family = *first == kSeeSecond ? *second : *first;
  const char* const name = StandardFamilyName(family);
  return name != nullptr ? std::string(name) : NameOf(std::span<const CodeName>(), family);
}

// A count in eight bits, or where these do not suffice in sixteen; 0 is unknown.
OptionalNumber Count(const StructureFields& fields, std::size_t narrow, std::size_t wide) {
  constexpr std::uint64_t kSeeWide = 0xFF;
  const auto count = fields.Known(narrow, 1, {0});
  if (count != kSeeWide) return count;
  const auto wide_count = fields.Number(wide, 2);
  if (!wide_count) return count;
  return fields.Known(wide, 2, {0, 0xFFFF});
}

// Bit 7 says how the others are meant: in tenths of a volt, or as legacy bits, of which one alone
// is set.
OptionalNumber Voltage(const StructureFields& fields) {
  const auto voltage = fields.Byte(0x11);
  if (!voltage) return std::nullopt;
  if ((*voltage & 0x80) != 0) return (*voltage & 0x7F) * std::uint64_t{100};
  switch (*voltage) {
    case 1:
      return 5000;
    case 2:
      return 3300;
    case 4:
      return 2900;
    default:
      return std::nullopt;
  }
}

// In KiB, or in units of 64 KiB where the highest bit is set; sizes that need it stand in the
// second field.
OptionalNumber CacheSize(const StructureFields& fields, std::size_t first, std::size_t second) {
  const auto size = fields.Word(first);
  if (!size) return std::nullopt;
  const auto large = fields.DWord(second);
  if (*size == 0xFFFF && large) {
    return (*large & 0x7FFFFFFF) * std::uint64_t{(*large & 0x80000000) != 0 ? 64u : 1u};
  }
  return (*size & 0x7FFF) * std::uint64_t{(*size & 0x8000) != 0 ? 64u : 1u};
}

}  // namespace

ProcessorInfo ReadProcessor(const StructureFields& fields) {
  ProcessorInfo info;
  info.socket = fields.String(0x04);
  if (const auto type = fields.Byte(0x05)) info.type = NameOf(kProcessorTypes, 1, *type);
  info.family = Family(fields);
  info.manufacturer = fields.String(0x07);
  if (const auto id = fields.Bytes(0x08, 8); !id.empty()) info.id = bytes::HexText(id);
  info.version = fields.String(0x10);
  info.voltage_mv = Voltage(fields);
  info.external_clock_mhz = fields.Known(0x12, 2, {0});
  info.max_speed_mhz = fields.Known(0x14, 2, {0});
  info.current_speed_mhz = fields.Known(0x16, 2, {0});
  if (const auto status = fields.Byte(0x18)) {
    info.is_populated = (*status & 0x40) != 0;
    if (*info.is_populated) info.status = NameOf(kProcessorStatus, 0, *status & 0x07);
  }
  info.serial_number = fields.String(0x20);
  info.asset_tag = fields.String(0x21);
  info.part_number = fields.String(0x22);
  info.cores = Count(fields, 0x23, 0x2A);
  info.cores_enabled = Count(fields, 0x24, 0x2C);
  info.threads = Count(fields, 0x25, 0x2E);
  info.threads_enabled = fields.Known(0x30, 2, {0, 0xFFFF});
  return info;
}

CacheInfo ReadCache(const StructureFields& fields) {
  CacheInfo info;
  info.designation = fields.String(0x04);
  if (const auto configuration = fields.Word(0x05)) {
    info.level = (*configuration & 0x07) + std::uint64_t{1};
    info.location = NameOf(kCacheLocations, 0, *configuration >> 5 & 0x03);
    info.is_enabled = (*configuration & 0x80) != 0;
    info.mode = NameOf(kCacheModes, 0, *configuration >> 8 & 0x03);
  }
  info.max_size_kib = CacheSize(fields, 0x07, 0x13);
  info.installed_size_kib = CacheSize(fields, 0x09, 0x17);
  info.speed_ns = fields.Known(0x0F, 1, {0});
  if (const auto code = fields.Byte(0x10))
    info.error_correction = NameOf(kCacheErrorCorrection, 1, *code);
  if (const auto code = fields.Byte(0x11)) info.type = NameOf(kCacheTypes, 1, *code);
  if (const auto code = fields.Byte(0x12)) info.associativity = NameOf(kAssociativities, 1, *code);
  return info;
}

}  // namespace mira::client
