// Any bytes as a firmware table: walked, shown and published.

#include <cstddef>
#include <cstdint>
#include <sstream>

#include "smbios/table.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mira::smbios::StructureTable table;
  table.Parse({data, size});
  std::ostringstream out;
  for (const auto& [type, head] : table.Objects()) {
    head->Display(out);
    AttributeMap attributes;
    head->GetAttributes(attributes);
  }
  return 0;
}
