#include <optional>

#include "console/commands.h"
#include "console/structures.h"
#include "console/table_file.h"
#include "smbios/structure_factory.h"

namespace mira::console {
namespace {

struct Arguments {
  std::string type;
  std::string handle;
  bool attributes = false;
  std::string file;
  std::string save;
  bool Selects() const { return !type.empty() || !handle.empty(); }
};

struct Selection {
  std::optional<std::uint32_t> type;
  std::optional<std::uint32_t> handle;
};

Selection ParseSelection(const Arguments& a) {
  constexpr std::uint32_t kLargestType = 0xFF;
  constexpr std::uint32_t kLargestHandle = 0xFFFF;
  Selection selection;
  if (!a.type.empty()) selection.type = ParseNumber(a.type, "structure type", kLargestType);
  if (!a.handle.empty()) {
    selection.handle = ParseNumber(a.handle, "structure handle", kLargestHandle);
  }
  return selection;
}

// Ascending by type, in table order within a type.
std::vector<const CBIOSObject*> Select(const smbios::Registry& objects,
                                       const Selection& selection) {
  std::vector<const CBIOSObject*> selected;
  for (const auto& [type, head] : objects) {
    if (selection.type && *selection.type != type) continue;
    for (const CBIOSObject* object = head; object != nullptr; object = object->getNextObj()) {
      if (!selection.handle || *selection.handle == object->getHandle()) {
        selected.push_back(object);
      }
    }
  }
  return selected;
}

Json ToJson(const CBIOSObject& object) {
  Json attributes = Json::array();
  for (const auto& [key, value] : object.OwnAttributes()) {
    attributes.push_back({{"key", ToUtf8(key)}, {"value", ToUtf8(value)}});
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
    out << "  " << ToUtf8(key) << " : " << ToUtf8(value) << '\n';
  }
}

std::vector<std::uint8_t> ReadTable(const Arguments& a) {
  if (!a.file.empty()) return LoadTableFile(a.file);
  std::vector<std::uint8_t> table = smbios::ReadFirmwareTable();
  if (table.empty()) {
    throw CommandError(kTransportFailed, "smbios-failed",
                       "The system serves no SMBIOS table, or none that this user may read.", "",
                       "On Linux only root may; 'mira smbios --file TABLE' decodes a saved one.");
  }
  return table;
}

// What is wrong with the outcome, if anything.
std::optional<CommandError> Problem(const Structures& structures, bool found, const Arguments& a) {
  if (!structures.IsWhole()) {
    return CommandError(kInvalidValue, "malformed-table",
                        structures.Objects().empty()
                            ? "The SMBIOS table is malformed from its first structure on."
                            : "The SMBIOS table is malformed, or cut short, behind the structures "
                              "that could be read.",
                        a.file);
  }
  if (!found) {
    return CommandError(kNotFound, "no-structure", "The table holds no such structure.",
                        !a.handle.empty() ? a.handle : a.type,
                        "'mira smbios --attributes' lists what there is.");
  }
  return std::nullopt;
}

ExitStatus ShowSmbios(Context& context, const Arguments& a) {
  const Selection selection = ParseSelection(a);
  const Structures structures(ReadTable(a));
  // Init is asked only for what it says of the rest of the library.
  std::optional<CommandError> limit;
  if (a.file.empty() && context.Open().status != STATUS_SUCCESS) limit = InitError(context.Open());
  if (!a.save.empty()) SaveTableFile(a.save, structures.Table());

  const std::vector<const CBIOSObject*> selected = Select(structures.Objects(), selection);
  const std::optional<CommandError> problem = Problem(structures, !selected.empty(), a);
  if (context.IsJson()) {
    Json list = Json::array();
    for (const CBIOSObject* object : selected) list.push_back(ToJson(*object));
    const std::string version = structures.Version();
    Json document = {{"smbiosVersion", version.empty() ? Json() : Json(version)},
                     {"complete", structures.IsWhole()}};
    if (!a.file.empty()) document["file"] = a.file;
    if (!a.save.empty()) document["savedTo"] = a.save;
    if (limit) document["limit"] = ErrorJson(*limit);
    document["structures"] = std::move(list);
    if (problem) return context.Fail(*problem, document);
    context.Print(document);
    return kDone;
  }
  std::ostream& out = context.Out();
  if (!a.save.empty()) {
    out << "Saved " << structures.Table().size() << " bytes to " << a.save << ".\n";
  }
  if (a.save.empty() || a.Selects() || a.attributes) {
    for (const CBIOSObject* object : selected) {
      if (a.attributes) {
        WriteAttributes(out, *object);
      } else {
        object->DisplayOwn(out);
        out << std::dec;
      }
    }
  }
  if (limit)
    out << "\nOnly SMBIOS is available here: " << limit->what() << ' ' << limit->hint << '\n';
  if (problem) throw *problem;
  return kDone;
}

}  // namespace

void AddSmbios(CLI::App& app, Command& command) {
  auto arguments = std::make_shared<Arguments>();
  app.add_option("--type", arguments->type, "only structures of this type");
  app.add_option("--handle", arguments->handle, "only the structure of this handle");
  app.add_flag("--attributes", arguments->attributes,
               "show the published attributes, not the dump");
  app.add_option("--file", arguments->file, "decode a saved table; needs no rights");
  app.add_option("--save", arguments->save,
                 "save the table to a file; shows structures only when asked for some");
  app.footer(
      "Numbers are decimal, or hexadecimal with 0x. --file takes the firmware table as --save\n"
      "writes it, a dump that begins with its entry point, a bare structure table, and\n"
      "hexadecimal text of these.\n"
      "Examples:\n"
      "  mira smbios --type 17\n"
      "  mira smbios --handle 0x1100 --attributes\n"
      "  mira smbios --save pc.rsmb\n"
      "  mira smbios --file pc.rsmb --json");
  command.Run(app, [arguments](Context& context) { return ShowSmbios(context, *arguments); });
}

}  // namespace mira::console
