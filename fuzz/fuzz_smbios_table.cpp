// Any bytes as a firmware table: walked, shown, published, and read as an inventory.

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

#include "client/inventory.h"
#include "client/smbios.h"
#include "client/smbios_file.h"
#include "fuzz/support/discard.h"
#include "smbios/table.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const mira::bytes::ByteSpan input(data, size);
  mira::smbios::StructureTable table;
  table.Parse(input);
  mira::fuzz::DiscardBuffer discard;
  std::ostream out(&discard);
  for (const auto& [type, head] : table.Objects()) {
    for (CBIOSObject* object = head; object != nullptr; object = object->getNextObj()) {
      object->Display(out);
      AttributeMap attributes;
      object->GetAttributes(attributes);
    }
  }
  // The same bytes behind the header that the firmware table service puts in front of a table.
  const auto firmware_table = mira::client::WithHeader({3, 7}, size, input);
  mira::client::ReadInventory(firmware_table);
  for (const auto& structure : mira::client::ReadStructures(firmware_table).structures) {
    mira::client::ToJson(structure);
  }
  return 0;
}
