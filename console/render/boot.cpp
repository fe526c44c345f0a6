#include "console/face.h"

namespace mira::console {
namespace {

using client::Readable;

std::string Number(const Json& number) { return Hex(number.get<unsigned>(), 4); }

std::string OrderText(const Json& order) {
  std::string text;
  for (const Json& number : order) text += (text.empty() ? "" : ",") + Number(number);
  return text;
}

// A text of the machine or of a file.
std::string Text(const Json& value) { return Escaped(Readable(value)); }

void WriteRest(const Json& document, const char* what, std::ostream& out) {
  if (document.value("complete", true)) return;
  out << "(The firmware's answer is malformed behind these " << what << ".)\n";
}

void List(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& list : document.at("lists")) {
    rows.push_back({Readable(list.at("list")), list.at("kind") == "uefi" ? "UEFI" : "legacy",
                    Readable(list.at("name"))});
  }
  if (!rows.empty() || document.at("complete") == true) {
    RenderList(out, {"List", "Kind", "Name"}, rows, {0});
  }
  WriteRest(document, "lists", out);
}

void WriteProblem(const Json& holder, std::ostream& out) {
  const auto problem = holder.find("problem");
  if (problem == holder.end()) return;
  out << "  Malformed : at byte " << Readable(problem->at("offset")) << ": "
      << Text(problem->at("message")) << '\n';
}

void WritePaths(const Json& paths, std::ostream& out) {
  bool is_first = true;
  for (const Json& path : paths) {
    out << (is_first ? "  Path : " : "  Further path : ") << Text(path.at("text")) << '\n';
    WriteProblem(path, out);
    is_first = false;
  }
}

void WriteOption(const Json& option, std::ostream& out) {
  const bool is_active = option.at("active");
  if (option.contains("number")) {
    out << Number(option["number"]) << (is_active ? " * " : "   ");
  }
  out << Text(option.at("description")) << '\n';
  out << "  Attributes : " << Hex(option.at("attributes").get<unsigned>(), 8)
      << (is_active ? " (active)\n" : " (not active)\n");
  if (option.contains("variableAttributes")) {
    out << "  Attributes of the variable : " << Hex(option["variableAttributes"].get<unsigned>(), 8)
        << '\n';
  }
  if (option.contains("device")) {
    const Json& device = option["device"];
    out << "  Device : type " << Hex(device.at("type").get<unsigned>()) << ", status "
        << Hex(device.at("statusFlag").get<unsigned>(), 4) << ", '"
        << Text(device.at("description")) << "'\n";
  }
  WritePaths(option.at("paths"), out);
  WriteProblem(option, out);
  if (option.at("optionalData") != "") {
    out << "  Optional data : " << Text(option["optionalData"])
        << "\n  Optional data as text : " << Text(option.at("optionalDataText")) << '\n';
  }
}

void ShowBoot(const Json& document, std::ostream& out) {
  const Json& lists = document.at("lists");
  if (lists.empty() && document.at("complete") == true) out << "(none)\n";
  const char* separator = "";
  for (const Json& list : lists) {
    out << separator << "List " << Readable(list.at("list")) << " : " << Text(list.at("name"))
        << (list.at("kind") == "uefi" ? " (UEFI)" : " (legacy)")
        << "\nOrder : " << OrderText(list.at("order")) << '\n';
    for (const Json& option : list.at("options")) WriteOption(option, out);
    WriteRest(list, "options", out);
    separator = "\n";
  }
  WriteRest(document, "lists", out);
}

void Order(const Json& document, std::ostream& out) {
  const Json& change = document.at("changes").at(0);
  const std::string outcome = change.at("outcome");
  const bool is_plain =
      (outcome == "changed" || outcome == "already-so") && !change.contains("wanted");
  std::string given;
  for (const Json& entry : document.value("given", Json::array())) {
    given += (given.empty() ? "" : ",") + Text(entry);
  }
  if (given.empty()) given = OrderText(change.at("after"));
  const std::string target = Text(change.at("target"));
  if (document.value("whatIf", false) && outcome == "planned") {
    out << target << ": '" << OrderText(change.at("before")) << "' -> '" << given
        << "'\nNothing was written.\n";
  } else if (!is_plain) {
    RenderChanges(document, out);
  } else if (outcome == "already-so") {
    out << "The " << target << " is already " << OrderText(change.at("before")) << ".\n";
  } else {
    out << "The " << target << " is now " << given << ".\nIt was " << OrderText(change.at("before"))
        << ".\n";
  }
}

std::string UndoOrder(const Json& document) {
  return "boot order " + Readable(document.at("list")) + " " +
         OrderText(document.at("changes").at(0).at("before"));
}

void ShowLegacy(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& device : document.at("devices")) {
    rows.push_back({Readable(device.at("device")), Readable(device.at("typeName")),
                    Hex(device.at("type").get<unsigned>(), 4),
                    Hex(device.at("statusFlags").get<unsigned>(), 4)});
  }
  RenderList(out, {"Device", "What", "Type", "Status"}, rows, {0});
  const auto write = [&](const char* heading, const Json& places) {
    out << heading;
    const char* separator = "";
    for (const Json& place : places) {
      out << separator << Readable(place);
      const auto index = place.get<std::size_t>();
      if (index < rows.size()) out << " (" << Escaped(rows[index][1]) << ")";
      separator = ", ";
    }
    out << '\n';
  };
  write("\nIPL priority : ", document.at("iplPriority"));
  write("BCV priority : ", document.at("bcvPriority"));
}

std::string UndoLegacy(const Json& document) {
  constexpr const char* kOptions[] = {" --ipl ", " --bcv "};  // as the changes are ordered
  std::string words = "boot legacy set";
  const Json& changes = document.at("changes");
  for (std::size_t i = 0; i < changes.size() && i < 2; ++i) {
    if (changes[i].at("outcome") != "changed") continue;
    std::string places;
    for (const Json& place : changes[i].at("before")) {
      places += (places.empty() ? "" : ",") + Readable(place);
    }
    words += kOptions[i] + places;
  }
  return words;
}

void Decoded(const Json& document, std::ostream& out) {
  if (document.contains("option")) return WriteOption(document["option"], out);
  for (const Json& path : document.at("paths")) {
    out << Text(path.at("text")) << '\n';
    WriteProblem(path, out);
  }
}

void Encoded(const Json& document, std::ostream& out) {
  out << Readable(document.at("bytes")) << '\n';
}

}  // namespace

std::vector<Face> BootFaces() {
  return {
      {"boot.list", "  mira --sim boot list --json", List},
      {"boot.show", "  mira --sim boot show\n  mira --sim boot show 'UEFI Boot' --json", ShowBoot},
      {"boot.order",
       "  mira --sim boot order 0 3,2,1,0 --what-if\n"
       "  mira --sim boot order 0 0x0002,0x0000,0x0003,0x0001 --yes\n"
       "  mira --sim boot order 'Legacy Boot' 'Internal disk,Boot0001,CD/DVD,3' --yes",
       Order, UndoOrder},
      {"boot.first",
       "  mira --sim boot first 'Windows Boot Manager' --yes\n"
       "  mira --sim boot first 2 --list 0 --what-if",
       Order, UndoOrder},
      {"boot.legacy.show", "  mira --sim boot legacy\n  mira --sim boot legacy show --json",
       ShowLegacy},
      {"boot.legacy.set",
       "  mira --sim boot legacy set --ipl 3,1,0,2 --what-if\n"
       "  mira --sim boot legacy set --ipl network,floppy,'hard disk',CD-ROM --yes",
       nullptr, UndoLegacy},
      {"boot.decode", "  mira boot decode Boot0001.bin\n  mira boot decode - < option.hex",
       Decoded},
      {"boot.encode", "  mira boot encode 'PciRoot(0x0)/Pci(0x1F,0x2)/Sata(0x0,0xFFFF,0x0)'",
       Encoded},
  };
}

}  // namespace mira::console
