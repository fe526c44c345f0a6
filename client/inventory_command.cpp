#include "client/commands.h"
#include "client/inventory_json.h"
#include "client/smbios.h"
#include "smbios/table.h"

namespace mira::client {
namespace {

Json ShowInventory(Request& request) {
  const std::vector<std::uint8_t> table = ReadTable(request);
  const Inventory inventory = ReadInventory(table);
  if (inventory.is_complete) return ToJson(inventory);
  smbios::TableWalk walk(bytes::Slice(table, smbios::kFirmwareHeaderSize));
  Error error = MalformedTable(walk.Next() == smbios::TableWalk::Step::kStructure);
  error.document = ToJson(inventory);
  throw error;
}

}  // namespace

std::vector<Command> InventoryCommands() {
  return {{.name = "inventory",
           .summary = "Show the machine: processors, memory, firmware, slots, batteries",
           .arguments = {{.name = "file",
                          .type = Type::kContent,
                          .help = "the machine of a saved SMBIOS table; needs no rights"}},
           .run = ShowInventory}};
}

}  // namespace mira::client
