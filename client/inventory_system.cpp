// BIOS, system, board and chassis.

#include "bytes/text.h"
#include "client/inventory_parts.h"

namespace mira::client {
namespace {

constexpr const char* kWakeUpTypes[] = {"Reserved",     "Other",      "Unknown",
                                        "APM Timer",    "Modem Ring", "LAN Remote",
                                        "Power Switch", "PCI PME#",   "AC Power Restored"};

constexpr const char* kBoardTypes[] = {"Unknown",
                                       "Other",
                                       "Server Blade",
                                       "Connectivity Switch",
                                       "System Management Module",
                                       "Processor Module",
                                       "I/O Module",
                                       "Memory Module",
                                       "Daughter Board",
                                       "Motherboard",
                                       "Processor+Memory Module",
                                       "Processor+I/O Module",
                                       "Interconnect Board"};

constexpr const char* kChassisTypes[] = {"Other",
                                         "Unknown",
                                         "Desktop",
                                         "Low Profile Desktop",
                                         "Pizza Box",
                                         "Mini Tower",
                                         "Tower",
                                         "Portable",
                                         "Laptop",
                                         "Notebook",
                                         "Hand Held",
                                         "Docking Station",
                                         "All In One",
                                         "Sub Notebook",
                                         "Space-saving",
                                         "Lunch Box",
                                         "Main Server Chassis",
                                         "Expansion Chassis",
                                         "Sub Chassis",
                                         "Bus Expansion Chassis",
                                         "Peripheral Chassis",
                                         "RAID Chassis",
                                         "Rack Mount Chassis",
                                         "Sealed-case PC",
                                         "Multi-system",
                                         "CompactPCI",
                                         "AdvancedTCA",
                                         "Blade",
                                         "Blade Enclosing",
                                         "Tablet",
                                         "Convertible",
                                         "Detachable",
                                         "IoT Gateway",
                                         "Embedded PC",
                                         "Mini PC",
                                         "Stick PC"};

// "major.minor"; nothing when either is the value for "none".
OptionalText Release(const StructureFields& fields, std::size_t offset) {
  const auto major = fields.Known(offset, 1, {0xFF});
  const auto minor = fields.Known(offset + 1, 1, {0xFF});
  if (!major || !minor) return std::nullopt;
  return std::to_string(*major) + '.' + std::to_string(*minor);
}

OptionalNumber RomSize(const StructureFields& fields) {
  constexpr std::uint64_t kBlockKib = 64;
  constexpr std::uint64_t kKibPerMib = 1024;
  const auto blocks = fields.Byte(0x09);
  const auto extended = fields.Word(0x18);
  if (!blocks) return std::nullopt;
  if (*blocks != 0xFF || !extended) return (*blocks + std::uint64_t{1}) * kBlockKib;
  const std::uint64_t size = *extended & 0x3FFF;
  switch (*extended >> 14) {
    case 0:
      return size * kKibPerMib;
    case 1:
      return size * kKibPerMib * 1024;
    default:
      return std::nullopt;
  }
}

// Since 2.6 the first three groups are stored little-endian; all ones stand for none, all zeros
// for one that is not set.
OptionalText Uuid(bytes::ByteSpan stored, SmbiosVersion version) {
  const auto all = [stored](std::uint8_t value) {
    for (const std::uint8_t byte : stored) {
      if (byte != value) return false;
    }
    return true;
  };
  if (stored.empty() || all(0) || all(0xFF)) return std::nullopt;
  constexpr std::uint8_t kInOrder[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  constexpr std::uint8_t kSwapped[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  const bool is_early =
      version.major != 0 && (version.major < 2 || (version.major == 2 && version.minor < 6));
  std::string text;
  for (std::size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += bytes::HexNumber(stored[is_early ? kInOrder[i] : kSwapped[i]], 2);
  }
  return text;
}

}  // namespace

BiosInfo ReadBios(const StructureFields& fields) {
  BiosInfo info;
  info.vendor = fields.String(0x04);
  info.version = fields.String(0x05);
  info.release_date = fields.String(0x08);
  info.rom_size_kib = RomSize(fields);
  if (const auto characteristics = fields.Byte(0x13)) {
    info.is_uefi = (*characteristics & 0x08) != 0;
    info.is_virtual_machine = (*characteristics & 0x10) != 0;
  }
  info.release = Release(fields, 0x14);
  info.firmware_release = Release(fields, 0x16);
  return info;
}

SystemInfo ReadSystem(const StructureFields& fields, SmbiosVersion version) {
  SystemInfo info;
  info.manufacturer = fields.String(0x04);
  info.product_name = fields.String(0x05);
  info.version = fields.String(0x06);
  info.serial_number = fields.String(0x07);
  info.uuid = Uuid(fields.Bytes(0x08, 16), version);
  if (const auto type = fields.Byte(0x18)) info.wake_up_type = NameOf(kWakeUpTypes, 0, *type);
  info.sku_number = fields.String(0x19);
  info.family = fields.String(0x1A);
  return info;
}

BoardInfo ReadBoard(const StructureFields& fields) {
  BoardInfo info;
  info.manufacturer = fields.String(0x04);
  info.product = fields.String(0x05);
  info.version = fields.String(0x06);
  info.serial_number = fields.String(0x07);
  info.asset_tag = fields.String(0x08);
  info.location = fields.String(0x0A);
  if (const auto type = fields.Byte(0x0D)) info.type = NameOf(kBoardTypes, 1, *type);
  return info;
}

ChassisInfo ReadChassis(const StructureFields& fields) {
  ChassisInfo info;
  info.manufacturer = fields.String(0x04);
  if (const auto type = fields.Byte(0x05)) {
    info.type = NameOf(kChassisTypes, 1, *type & 0x7F);
    info.has_lock = (*type & 0x80) != 0;
  }
  info.version = fields.String(0x06);
  info.serial_number = fields.String(0x07);
  info.asset_tag = fields.String(0x08);
  info.height_units = fields.Known(0x11, 1, {0});
  info.power_cords = fields.Known(0x12, 1, {0});
  // Behind the contained elements.
  const auto count = fields.Byte(0x13);
  const auto size = fields.Byte(0x14);
  if (count && size) info.sku_number = fields.String(0x15 + std::size_t{*count} * *size);
  return info;
}

}  // namespace mira::client
