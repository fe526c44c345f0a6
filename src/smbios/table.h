#ifndef MIRA_SMBIOS_TABLE_H_
#define MIRA_SMBIOS_TABLE_H_

// The SMBIOS table: read from the firmware, split into its structures, and turned into objects by
// type.
//
//   mira::smbios::StructureTable table;
//   if (table.Parse(file_bytes)) {
//     for (const auto& [type, head] : table.Objects()) head->Display(std::cout);
//   }

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "bytes/reader.h"
#include "platform/api.h"
#include "smbios/bios_object.h"

namespace mira::smbios {

inline constexpr unsigned char kEndOfTable = 127;
inline constexpr std::size_t kFirmwareHeaderSize = 8;

// Per structure type the first object of the type's chain.
using Registry = std::map<unsigned char, CBIOSObject*>;

// Makes the object for one structure copy (see CopyStructure), or null. Asked for structures whose
// bytes lie in no block with those of others (smbios/structure_blocks.h, inside the library).
using ObjectMaker = std::function<CBIOSObject*(std::unique_ptr<unsigned char[]> raw)>;

// Splits a structure table (without the firmware table's header) into structures, never leaving its
// bytes. Each structure is the formatted area and the string set with the NUL that ends the last
// string (without strings: with one NUL), which is what objects are made from.
class MIRA_API TableWalk {
 public:
  explicit TableWalk(bytes::ByteSpan table) : rest_(table) {}

  enum class Step {
    kStructure,  // Structure() holds the next one
    kEnd,        // the end-of-table structure was the last one, or nothing but zero bytes follows
    kMalformed,  // what follows is no whole structure
  };
  Step Next();
  bytes::ByteSpan Structure() const { return structure_; }

 private:
  bytes::ByteSpan rest_;
  bytes::ByteSpan structure_;
  bool ended_ = false;
};

// The whole firmware table 'RSMB' as the system serves it: an 8-byte header and the structures.
// Empty when the two size answers of the service differ or either is 0.
MIRA_API std::vector<std::uint8_t> ReadFirmwareTable();

// Makes an object of every structure and files it under its type, chains in table order. False when
// the table is malformed; the objects made so far stay in `registry`.
bool FillRegistry(bytes::ByteSpan table, const ObjectMaker& make, Registry& registry);

// A table of its own, apart from the process-wide registry: one saved in a file, say. Needs no
// rights.
class MIRA_API StructureTable {
 public:
  StructureTable() = default;
  ~StructureTable();
  StructureTable(const StructureTable&) = delete;
  StructureTable& operator=(const StructureTable&) = delete;

  // Parses a table as the firmware table service returns it (8-byte header, then structures). False
  // when it is malformed; what came before the damage can be read then. Type-0xDA objects have no
  // connection and execute no calls.
  bool Parse(bytes::ByteSpan firmware_table);
  const Registry& Objects() const { return objects_; }

 private:
  Registry objects_;
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_TABLE_H_
