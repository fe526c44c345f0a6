#include "client/inventory.h"

#include <algorithm>

#include "client/inventory_parts.h"
#include "client/smbios_file.h"
#include "smbios/table.h"

namespace mira::client {
namespace {

constexpr std::uint8_t kOemStrings = 11;

// The first structure of a type that a table holds once.
template <typename Part, typename Read>
void KeepFirst(std::optional<Part>& part, Read read) {
  if (!part) part = read();
}

// Whether the structure's type has a place of its own.
bool Add(Inventory& inventory, const StructureFields& fields, SmbiosVersion version) {
  switch (fields.Type()) {
    case 0:
      KeepFirst(inventory.bios, [&] { return ReadBios(fields); });
      return true;
    case 1:
      KeepFirst(inventory.system, [&] { return ReadSystem(fields, version); });
      return true;
    case 2:
      inventory.boards.push_back(ReadBoard(fields));
      return true;
    case 3:
      inventory.chassis.push_back(ReadChassis(fields));
      return true;
    case 4:
      inventory.processors.push_back(ReadProcessor(fields));
      return true;
    case 7:
      inventory.caches.push_back(ReadCache(fields));
      return true;
    case 8:
      inventory.ports.push_back(ReadPort(fields));
      return true;
    case 9:
      inventory.slots.push_back(ReadExpansionSlot(fields));
      return true;
    case kOemStrings: {
      const std::vector<std::string> texts = fields.Strings();
      const std::size_t count = std::min<std::size_t>(texts.size(), fields.Byte(0x04).value_or(0));
      inventory.oem_strings.insert(inventory.oem_strings.end(), texts.begin(),
                                   texts.begin() + static_cast<std::ptrdiff_t>(count));
      return true;
    }
    case 16:
      inventory.memory_arrays.push_back(ReadMemoryArray(fields));
      return true;
    case 17:
      inventory.memory_slots.push_back(ReadMemorySlot(fields));
      return true;
    case 22:
      inventory.batteries.push_back(ReadPortableBattery(fields));
      return true;
    case 43:
      inventory.tpms.push_back(ReadTpm(fields));
      return true;
    case 45:
      inventory.firmware.push_back(ReadFirmwareComponent(fields));
      return true;
    default:
      return false;
  }
}

}  // namespace

Inventory ReadInventory(bytes::ByteSpan firmware_table) {
  constexpr std::uint8_t kInactive = 126;
  Inventory inventory;
  if (firmware_table.size() < smbios::kFirmwareHeaderSize) return inventory;
  const SmbiosVersion version = RealVersion(firmware_table[1], firmware_table[2]);
  if (version.major != 0) {
    inventory.smbios_version = std::to_string(version.major) + '.' + std::to_string(version.minor);
  }
  bool has_end = false;
  smbios::TableWalk walk(bytes::Slice(firmware_table, smbios::kFirmwareHeaderSize));
  smbios::TableWalk::Step step = walk.Next();
  for (; step == smbios::TableWalk::Step::kStructure; step = walk.Next()) {
    const StructureFields fields(walk.Structure());
    has_end = fields.Type() == smbios::kEndOfTable;
    if (has_end || fields.Type() == kInactive) continue;
    if (!Add(inventory, fields, version)) ++inventory.others[fields.Type()];
  }
  inventory.is_complete =
      step == smbios::TableWalk::Step::kEnd && (has_end || !IsCutShort(firmware_table));
  return inventory;
}

}  // namespace mira::client
