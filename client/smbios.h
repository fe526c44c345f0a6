#ifndef MIRA_CLIENT_SMBIOS_H_
#define MIRA_CLIENT_SMBIOS_H_

// An SMBIOS table's structures as values, apart from the facade: reading them needs neither rights
// nor a calling interface.
//
//   const StructureList list = ReadStructures(smbios::ReadFirmwareTable());
//   for (const StructureValue& structure : Select(list, {.type = 17})) Show(structure.attributes);

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"
#include "client/error.h"
#include "client/json.h"

namespace mira::client {

class Request;
class Session;

struct StructureAttribute {
  std::string key;
  std::string value;  // the firmware's bytes
  // The field lies, wholly or in part, beyond the structure's length: the firmware has not given
  // this value.
  bool is_beyond = false;
};

struct StructureValue {
  std::uint8_t type = 0;
  std::uint16_t handle = 0;
  // Another structure of the table has the same handle, against DSP0134 6.1.2.
  bool is_handle_repeated = false;
  std::string class_name;
  std::vector<std::uint8_t> bytes;  // formatted area and string set
  std::vector<StructureAttribute> attributes;
};

struct StructureList {
  std::string smbios_version;  // "3.2"; empty when it is not known
  bool is_complete = false;    // else the table is malformed, or cut short, behind the last one
  std::vector<StructureValue> structures;  // ascending by type, in table order within a type
};

// `firmware_table` is in the form of the firmware table service. Of one that is malformed gives
// what comes before the damage.
StructureList ReadStructures(bytes::ByteSpan firmware_table);

struct StructureSelection {
  std::optional<std::uint8_t> type = std::nullopt;
  std::optional<std::uint16_t> handle = std::nullopt;
};
std::vector<StructureValue> Select(const StructureList& list, const StructureSelection& selection);

// {"type", "handle", "class", "bytes", "attributes": [{"key", "value"}]}; where it is so, a
// structure has "handleRepeated" and an attribute "beyond".
Json ToJson(const StructureValue& structure);

// Writes the library's dump of a structure. `shown` gives the text that stands for each of its
// strings, so that no string with a line end in it looks like two lines of the dump. A structure
// that is none is left out.
void WriteDump(bytes::ByteSpan structure, const std::function<std::string(std::string_view)>& shown,
               std::ostream& out);

// The firmware's own table, in the form of the firmware table service. Throws Error when there is
// none.
std::vector<std::uint8_t> ReadTable(Session& session);
// The table in the argument "file", else the firmware's own, in the form of the firmware table
// service. Throws Error when there is none.
std::vector<std::uint8_t> ReadTable(Request& request);
// The error of a table that could not be read to its end.
Error MalformedTable(bool has_structures);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SMBIOS_H_
