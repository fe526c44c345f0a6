#include <optional>

#include "console/commands.h"
#include "console/table_file.h"
#include "smbios/structure_factory.h"
#include "smbios/table.h"

namespace mira::console {
namespace {

struct Arguments {
  std::string type;
  std::string handle;
  bool attributes = false;
  std::string file;
  std::string save;
};

// The structures that the options select, ascending by type, in table order within a type.
std::vector<const CBIOSObject*> Select(const smbios::Registry& objects, const Arguments& a) {
  constexpr std::uint32_t kLargestType = 0xFF;
  constexpr std::uint32_t kLargestHandle = 0xFFFF;
  std::optional<std::uint32_t> type;
  std::optional<std::uint32_t> handle;
  if (!a.type.empty()) type = ParseNumber(a.type, "structure type", kLargestType);
  if (!a.handle.empty()) handle = ParseNumber(a.handle, "structure handle", kLargestHandle);
  std::vector<const CBIOSObject*> selected;
  for (const auto& [key, head] : objects) {
    if (type && *type != key) continue;
    for (const CBIOSObject* object = head; object != nullptr; object = object->getNextObj()) {
      if (!handle || *handle == object->getHandle()) selected.push_back(object);
    }
  }
  if (selected.empty()) {
    throw CommandError(kNotFound, "no-structure", "The table holds no such structure.",
                       !a.handle.empty() ? a.handle : a.type);
  }
  return selected;
}

Json ToJson(const CBIOSObject& object) {
  Json attributes = Json::array();
  for (const auto& [key, value] : object.OwnAttributes()) {
    attributes.push_back({{"key", key}, {"value", ToUtf8(value)}});
  }
  return {{"type", object.getType()},
          {"handle", object.getHandle()},
          {"class", smbios::ClassName(object.getType())},
          {"attributes", attributes}};
}

void WriteAttributes(std::ostream& out, const CBIOSObject& object) {
  out << smbios::ClassName(object.getType()) << " : Type "
      << static_cast<unsigned>(object.getType()) << " : Handle " << Hex(object.getHandle(), 4)
      << '\n';
  for (const auto& [key, value] : object.OwnAttributes()) {
    out << "  " << key << " : " << ToUtf8(value) << '\n';
  }
}

ExitStatus ShowSmbios(Context& context, const Arguments& a) {
  // The table needs neither rights nor a calling interface; Init is asked only for what it says of
  // the rest.
  std::vector<std::uint8_t> table;
  std::string note;
  if (!a.file.empty()) {
    table = LoadTableFile(a.file);
  } else {
    table = smbios::ReadFirmwareTable();
    if (table.empty()) {
      throw CommandError(kTransportFailed, "smbios-failed",
                         "The system serves no SMBIOS table, or none that can be read here.", "",
                         "'mira smbios --file TABLE' decodes a saved one.");
    }
    const Opened& opened = context.Open();
    if (opened.status != STATUS_SUCCESS) note = InitError(opened).what();
  }
  if (!a.save.empty()) SaveTableFile(a.save, table);

  smbios::StructureTable structures;
  const bool whole = structures.Parse(table);
  if (structures.Objects().empty()) {
    throw CommandError(kInvalidValue, "malformed-table", "The SMBIOS table is malformed.", a.file);
  }
  const std::vector<const CBIOSObject*> selected = Select(structures.Objects(), a);
  if (context.IsJson()) {
    Json list = Json::array();
    for (const CBIOSObject* object : selected) list.push_back(ToJson(*object));
    Json document = {{"smbiosMajorVersion", table[1]}, {"complete", whole}, {"structures", list}};
    if (!note.empty()) document["note"] = note;
    context.Print(document);
  } else {
    std::ostream& out = context.Out();
    for (const CBIOSObject* object : selected) {
      if (a.attributes) {
        WriteAttributes(out, *object);
      } else {
        object->DisplayOwn(out);
        out << std::dec;
      }
    }
    if (!whole) out << "\nThe table is malformed behind the last structure shown.\n";
    if (!note.empty()) out << "\nOnly SMBIOS is available here: " << note << '\n';
  }
  return whole ? kDone : kInvalidValue;
}

}  // namespace

void AddSmbios(CLI::App& app, Command& command) {
  auto arguments = std::make_shared<Arguments>();
  app.add_option("--type", arguments->type, "only structures of this type");
  app.add_option("--handle", arguments->handle, "only the structure of this handle");
  app.add_flag("--attributes", arguments->attributes,
               "show the published attributes, not the dump");
  app.add_option("--file", arguments->file, "decode a saved table; needs no rights");
  app.add_option("--save", arguments->save, "also save the table to a file");
  app.footer(
      "Examples:\n  mira smbios --type 17\n  mira smbios --handle 0x1100 --attributes\n"
      "  mira smbios --save pc.rsmb\n  mira smbios --file pc.rsmb --json");
  command.Run(app, [arguments](Context& context) { return ShowSmbios(context, *arguments); });
}

}  // namespace mira::console
