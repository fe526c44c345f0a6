#include "console/face.h"

#include <algorithm>
#include <iterator>

namespace mira::console {
namespace {

const std::vector<Face>& Faces() {
  static const std::vector<Face> all = [] {
    std::vector<Face> list;
    for (const auto noun :
         {ApplyFaces, AttrFaces, BatteryFaces, BootFaces, CallFaces, CompletionFaces, IdFaces,
          InfoFaces, InventoryFaces, ListFaces, PasswordFaces, ReportFaces, SimControlFaces,
          SimFaces, SmbiosFaces, SnapshotFaces, TagFaces, TokenFaces}) {
      std::vector<Face> some = noun();
      std::move(some.begin(), some.end(), std::back_inserter(list));
    }
    return list;
  }();
  return all;
}

// A setting that is on or off is shown as the options take it.
std::string ValueText(const Json& value) {
  if (value.is_boolean()) return value.get<bool>() ? "on" : "off";
  return Escaped(client::Readable(value));
}

void RenderChange(const Json& change, std::ostream& out) {
  if (change.value("secret", false) && change.at("before").is_null()) {
    out << Escaped(client::Readable(change.at("target"))) << ": a new value\n";
    return;
  }
  out << Escaped(client::Readable(change.at("target"))) << ": '" << ValueText(change.at("before"))
      << "' -> '" << ValueText(change.at("after")) << "'";
  const std::string outcome = change.at("outcome");
  if (outcome == "unknown") out << " (unknown whether it was taken)";
  if (outcome == "not-tried") out << " (not tried)";
  if (outcome == "refused" || outcome == "failed") out << " (" << outcome << ")";
  if (change.contains("wanted")) {
    out << " ('" << ValueText(change.at("wanted")) << "' was wanted)";
  }
  if (change.value("restartPending", false)) out << ", a restart is pending";
  out << '\n';
}

}  // namespace

const Face* FindFace(std::string_view command) {
  const auto& all = Faces();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [command](const Face& face) { return face.command == command; });
  return found != all.end() ? &*found : nullptr;
}

void RenderChanges(const Json& document, std::ostream& out) {
  const auto& changes = document.at("changes");
  const bool all_so = std::all_of(changes.begin(), changes.end(), [](const Json& change) {
    return change.at("outcome") == "already-so";
  });
  if (document.value("cut", false)) out << "The text is too long and was cut.\n";
  if (all_so) {
    out << "Nothing to change.\n";
    return;
  }
  for (const Json& change : changes) {
    if (change.at("outcome") != "already-so") RenderChange(change, out);
  }
  if (!document.value("whatIf", false)) return;
  RenderNotes(document, out);
  out << "Nothing was written.\n";
}

void RenderNotes(const Json& document, std::ostream& out) {
  const auto note = document.find("assumption");
  if (note != document.end()) out << "Note: " << client::Readable(*note) << '\n';
}

void RenderList(std::ostream& out, const std::vector<std::string>& headings, const Rows& rows,
                const std::vector<std::size_t>& right) {
  if (rows.empty()) {
    out << "(none)\n";
    return;
  }
  Rows table = {headings};
  table.insert(table.end(), rows.begin(), rows.end());
  WriteTable(out, table, right);
}

}  // namespace mira::console
