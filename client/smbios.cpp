#include "client/smbios.h"

#include <algorithm>
#include <map>
#include <set>

#include "bytes/text.h"
#include "client/commands.h"
#include "client/smbios_file.h"
#include "client/snapshot/snapshot.h"
#include "client/start_up.h"
#include "client/structure_marks.h"
#include "smbios/structure_factory.h"
#include "smbios/table.h"

namespace mira::client {
namespace {

using bytes::ByteSpan;
using smbios::TableWalk;

// The bytes of each structure, per type in table order, as the library chains its objects.
std::map<std::uint8_t, std::vector<ByteSpan>> SplitByType(ByteSpan table) {
  std::map<std::uint8_t, std::vector<ByteSpan>> structures;
  TableWalk walk(table);
  while (walk.Next() == TableWalk::Step::kStructure) {
    structures[walk.Structure()[0]].push_back(walk.Structure());
  }
  return structures;
}

// Fields of the formatted area that dumps show as characters.
struct CharacterField {
  std::uint8_t type;
  std::size_t offset;
};
constexpr CharacterField kCharacterFields[] = {{130, 0x04}, {131, 0x38}};
constexpr std::size_t kCharacters = 4;

// There is no room for an escape where such a field holds what is no printable character of ASCII.
void MakePrintable(std::vector<std::uint8_t>& formatted) {
  for (const CharacterField& field : kCharacterFields) {
    if (formatted[0] != field.type) continue;
    const std::size_t end = std::min(formatted.size(), field.offset + kCharacters);
    for (std::size_t i = field.offset; i < end; ++i) {
      const bool is_printable = formatted[i] >= 0x20 && formatted[i] < 0x7F;
      if (!is_printable && formatted[i] != 0) formatted[i] = '.';
    }
  }
}

StructureValue ValueOf(const CBIOSObject& object, ByteSpan bytes,
                       const std::set<std::uint16_t>& repeated) {
  StructureValue value;
  value.type = object.getType();
  value.handle = object.getHandle();
  value.is_handle_repeated = repeated.contains(object.getHandle());
  value.class_name = smbios::ClassName(object.getType());
  value.bytes.assign(bytes.begin(), bytes.end());
  const std::vector<bool> beyond = object.AttributesBeyond();
  for (auto& [key, text] : object.OwnAttributes()) {
    const std::size_t place = value.attributes.size();
    value.attributes.push_back({key, text, place < beyond.size() && beyond[place]});
  }
  return value;
}

StructureSelection SelectionOf(const Request& request) {
  StructureSelection selection;
  if (request.Has("type")) selection.type = static_cast<std::uint8_t>(request.Number("type"));
  if (request.Has("handle")) {
    selection.handle = static_cast<std::uint16_t>(request.Number("handle"));
  }
  return selection;
}

Json ToJson(const StructureSelection& selection) {
  Json json = Json::object();
  if (selection.type) json["type"] = *selection.type;
  if (selection.handle) json["handle"] = *selection.handle;
  return json;
}

Json ShowSmbios(Request& request) {
  const StructureSelection selection = SelectionOf(request);
  const std::vector<std::uint8_t> table = ReadTable(request);
  const StructureList list = ReadStructures(table);
  const std::vector<StructureValue> selected = Select(list, selection);
  Json document = {
      {"smbiosVersion", list.smbios_version.empty() ? Json() : Json(list.smbios_version)},
      {"complete", list.is_complete},
      {"selection", ToJson(selection)}};
  // Init is asked only for what it says of the rest of the library.
  if (!request.Has("file")) {
    if (const auto limit = StartProblem(request.GetSession())) document["limit"] = ToJson(*limit);
  }
  if (request.Has("form")) {
    document["table"] = bytes::HexText(request.Text("form") == "dump" ? ToDump(table) : table);
  }
  Json structures = Json::array();
  for (const StructureValue& structure : selected) {
    Json json = ToJson(structure);
    if (request.Flag("attributes")) json.erase("bytes");
    structures.push_back(std::move(json));
  }
  document["structures"] = std::move(structures);

  std::optional<Error> problem;
  if (!list.is_complete) {
    problem = MalformedTable(!list.structures.empty());
  } else if (selected.empty()) {
    const auto wanted = selection.handle ? *selection.handle : selection.type.value_or(0);
    problem = Error(kNotFound, "no-structure", "The table holds no such structure.",
                    std::to_string(wanted));
  }
  if (!problem) return document;
  problem->document = std::move(document);
  throw *problem;
}

}  // namespace

StructureList ReadStructures(ByteSpan firmware_table) {
  StructureList list;
  if (firmware_table.size() < smbios::kFirmwareHeaderSize) return list;
  if (firmware_table[1] != 0) {
    list.smbios_version =
        std::to_string(firmware_table[1]) + "." + std::to_string(firmware_table[2]);
  }
  smbios::StructureTable objects;
  list.is_complete = objects.Parse(firmware_table);
  // The walk ends where the bytes end; without an end-of-table structure only the header tells that
  // there was more.
  if (!objects.Objects().contains(smbios::kEndOfTable) && IsCutShort(firmware_table)) {
    list.is_complete = false;
  }
  const std::set<std::uint16_t> repeated = RepeatedHandles(objects.Objects());
  auto structures = SplitByType(firmware_table.subspan(smbios::kFirmwareHeaderSize));
  for (const auto& [type, head] : objects.Objects()) {
    auto bytes = structures[type].begin();
    for (const CBIOSObject* object = head; object != nullptr; object = object->getNextObj()) {
      list.structures.push_back(ValueOf(*object, *bytes++, repeated));
    }
  }
  return list;
}

std::vector<StructureValue> Select(const StructureList& list, const StructureSelection& selection) {
  std::vector<StructureValue> selected;
  for (const StructureValue& structure : list.structures) {
    if (selection.type && *selection.type != structure.type) continue;
    if (selection.handle && *selection.handle != structure.handle) continue;
    selected.push_back(structure);
  }
  return selected;
}

Json ToJson(const StructureValue& structure) {
  Json attributes = Json::array();
  for (const StructureAttribute& attribute : structure.attributes) {
    Json json = {{"key", ToUtf8(attribute.key)}, {"value", TextJson(attribute.value)}};
    if (attribute.is_beyond) json["beyond"] = true;
    attributes.push_back(std::move(json));
  }
  Json json = {{"type", structure.type},
               {"handle", structure.handle},
               {"class", structure.class_name},
               {"attributes", std::move(attributes)},
               {"bytes", bytes::HexText(structure.bytes)}};
  if (structure.is_handle_repeated) json["handleRepeated"] = true;
  return json;
}

void WriteDump(ByteSpan structure, const std::function<std::string(std::string_view)>& shown,
               std::ostream& out) {
  if (structure.size() < 2 || structure[1] > structure.size()) return;
  const auto formatted = structure.first(structure[1]);
  std::vector<std::uint8_t> copy(formatted.begin(), formatted.end());
  MakePrintable(copy);
  bytes::Reader strings(structure.subspan(formatted.size()));
  while (strings.Ok() && strings.Left() > 0) {
    const std::string text = shown(strings.CString());
    copy.insert(copy.end(), text.begin(), text.end());
    copy.push_back(0);
  }
  copy.push_back(0);
  smbios::StructureTable object;
  object.Parse(WithHeader({}, copy.size(), copy));
  for (const auto& [type, head] : object.Objects()) head->DisplayOwn(out);
  out << std::dec;
}

std::vector<std::uint8_t> ReadTable(Session& session) {
  if (const Snapshot* const kept = session.Kept()) return kept->Table();
  std::vector<std::uint8_t> table = smbios::ReadFirmwareTable();
  if (!table.empty()) return table;
  throw Error(kTransportFailed, "smbios-failed",
              "The system serves no SMBIOS table, or none that this user may read.");
}

std::vector<std::uint8_t> ReadTable(Request& request) {
  if (!request.Has("file")) return ReadTable(request.GetSession());
  const std::string content = request.Text("file");
  std::vector<std::uint8_t> table = TableFromFile(bytes::AsBytes(content));
  if (!table.empty()) return table;
  throw Error(kInvalidValue, "no-table", "The file holds no SMBIOS table.");
}

Error MalformedTable(bool has_structures) {
  return Error(kInvalidValue, "malformed-table",
               has_structures ? "The SMBIOS table is malformed, or cut short, behind the "
                                "structures that could be read."
                              : "The SMBIOS table is malformed from its first structure on.");
}

std::vector<Command> SmbiosCommands() {
  return {
      {.name = "smbios",
       .summary = "Show, save or decode the SMBIOS table",
       .arguments =
           {{.name = "type", .type = Type::kNumber, .help = "structure type to show", .max = 0xFF},
            {.name = "handle",
             .type = Type::kNumber,
             .help = "structure handle to show",
             .max = 0xFFFF},
            {.name = "attributes",
             .type = Type::kFlag,
             .help = "the published attributes, without the dump"},
            {.name = "file",
             .type = Type::kContent,
             .help = "decode a saved table; needs no rights"},
            {.name = "form",
             .help = "form in which the table is saved: rsmb, as the firmware table "
                     "service gives it, or dump, with an entry point",
             .choices = {"rsmb", "dump"}}},
       .run = ShowSmbios}};
}

}  // namespace mira::client
