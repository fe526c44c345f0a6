#include <algorithm>

#include "client/attribute_value.h"
#include "console/face.h"

namespace mira::console {
namespace {

using client::LimitsText;
using client::Readable;

constexpr char kNotShown[] = "(not shown)";  // a password's value

// A value as people read it.
std::string ValueText(const Json& value) { return value.is_null() ? kNotShown : Readable(value); }

std::string Quoted(const Json& value) { return "'" + Escaped(ValueText(value)) + "'"; }

// The same of a boot order with its modes, of which those of the start have names of their own.
std::string ValueText(const Json& attribute, const char* key, const std::string& suffix) {
  std::string text = ValueText(attribute.at(key));
  for (const client::ModeRow& row : client::kBootModes) {
    const auto mode = attribute.find(row.name + suffix);
    if (mode != attribute.end()) text += std::string("; ") + row.name + " " + mode->dump();
  }
  return text;
}

std::string TitleOf(const Json& attribute) {
  const std::string title = Readable(attribute.at("name")) + Readable(attribute.at("suffix"));
  return title.empty() ? Hex(attribute.at("handle").get<unsigned>(), 4) : title;
}

// A text that keeps its column in sight; 'get' shows it whole.
std::string Shortened(std::string text) {
  constexpr std::size_t kLongest = 36;
  if (text.size() <= kLongest) return text;
  std::size_t end = kLongest - 3;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "...";
}

void ShowList(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& a : document.at("attributes")) {
    rows.push_back({Hex(a.at("handle").get<unsigned>(), 4), TitleOf(a), Readable(a.at("type")),
                    a.at("readOnly").get<bool>() ? "read-only" : "",
                    Shortened(ValueText(a.at("value"))), LimitsText(a)});
  }
  RenderList(out, {"Handle", "Name", "Type", "", "Value", "Possible"}, rows);
}

void ShowOne(const Json& a, std::ostream& out) {
  Rows rows = {{"Name", TitleOf(a)},
               {"Handle", Hex(a.at("handle").get<unsigned>(), 4)},
               {"Type", Readable(a.at("type"))},
               {"Display name", Readable(a.value("displayName", Json()))},
               {"Help", Readable(a.value("help", Json()))},
               {"Value", ValueText(a, "value", "")},
               {"At boot", ValueText(a, "atBoot", "AtBoot")}};
  if (a.at("readOnly").get<bool>()) rows[2][1] += ", read-only";
  if (!a.at("default").is_null()) rows.push_back({"Default", Readable(a["default"])});
  rows.push_back({"Possible", LimitsText(a)});
  if (a.at("restartPending").get<bool>()) {
    rows.push_back({"Restart", "pending: the value at boot is another"});
  }
  WriteTable(out, rows);
}

void ShowGet(const Json& document, std::ostream& out) {
  bool is_first = true;
  for (const Json& attribute : document.at("attributes")) {
    if (!is_first) out << '\n';
    ShowOne(attribute, out);
    is_first = false;
  }
}

void ShowDiff(const Json& document, std::ostream& out) {
  const auto& differences = document.at("differences");
  Rows rows;
  for (const Json& d : differences) {
    rows.push_back({Hex(d.at("handle").get<unsigned>(), 4), TitleOf(d),
                    ValueText(d, "atBoot", "AtBoot"), ValueText(d, "value", "")});
  }
  if (rows.empty()) {
    out << "Every attribute has the value that it had at boot. No restart is pending.\n";
    return;
  }
  RenderList(out, {"Handle", "Name", "At boot", "Now"}, rows);
  const auto count = document.at("pendingCount").get<std::size_t>();
  out << "A restart is pending for " << count << (count == 1 ? " attribute.\n" : " attributes.\n");
}

std::string ChangeText(const Json& change) {
  const std::string target = Escaped(Readable(change.at("target")));
  if (change.value("secret", false)) return target + ": a new value";
  return target + ": " + Quoted(change.at("before")) + " -> " + Quoted(change.at("after"));
}

// What stands behind the values of a change that was made or tried.
std::string NoteOf(const Json& change) {
  const std::string outcome = change.at("outcome");
  std::string note;
  if (change.contains("wanted")) {
    note += outcome == "unknown" ? " The firmware took " + Quoted(change["wanted"]) +
                                       " but does not show it: a restart may be needed."
                                 : " " + Quoted(change["wanted"]) + " was wanted.";
  } else if (outcome == "unknown") {
    note += " Whether it was taken is unknown.";
  } else if (outcome == "changed" && change.value("restartPending", false)) {
    note += " It differs from the value at boot: a restart is pending.";
  }
  return note;
}

void ShowSet(const Json& document, std::ostream& out) {
  const bool is_dry = document.value("whatIf", false);
  for (const Json& change : document.at("changes")) {
    const std::string outcome = change.at("outcome");
    const std::string target = Escaped(Readable(change.at("target")));
    if (outcome == "already-so") {
      out << target << " is " << Quoted(change.at("before")) << " already.\n";
    } else if (outcome == "planned") {
      out << ChangeText(change) << '\n';
    } else if (outcome == "not-tried") {
      out << ChangeText(change) << " (not tried)\n";
    } else if (outcome == "refused" || outcome == "failed") {
      out << ChangeText(change) << " (" << outcome << ")\n";
    } else if (change.value("secret", false)) {
      out << target << (outcome == "changed" ? " was changed." : ":") << NoteOf(change) << '\n';
    } else {
      out << ChangeText(change) << "." << NoteOf(change) << '\n';
    }
  }
  if (is_dry) out << "Nothing was written.\n";
}

struct Counts {
  std::size_t changed = 0;
  std::size_t unchanged = 0;
  std::size_t failed = 0;
};

// Counts the attribute whose changes begin at a place, and gives the place of the next one's: a
// boot order has a change of its value, and one of each mode.
std::size_t CountAttribute(const Json& changes, std::size_t at, Counts& counts) {
  bool is_changed = false;
  bool is_unchanged = true;
  bool is_failed = false;
  do {
    const std::string outcome = changes[at].at("outcome");
    is_changed = is_changed || outcome == "changed";
    is_unchanged = is_unchanged && outcome == "already-so";
    is_failed = is_failed || changes[at].contains("error");
  } while (++at < changes.size() && changes[at].contains("field"));
  counts.changed += is_changed ? 1U : 0U;
  counts.unchanged += is_unchanged ? 1U : 0U;
  counts.failed += is_failed ? 1U : 0U;
  return at;
}

// How many attributes a reset leaves out, by the reason.
void ShowLeftOut(const Json& left_out, std::ostream& out) {
  struct Row {
    const char* reason;
    const char* one;
    const char* many;
  };
  static constexpr Row kRows[] = {
      {"password", "1 password", " passwords"},
      {"read-only", "1 read-only attribute", " read-only attributes"},
      {"no-default", "1 attribute without a default", " attributes without a default"},
  };
  std::string text;
  for (const Row& row : kRows) {
    const auto count = std::count_if(left_out.begin(), left_out.end(), [&row](const Json& item) {
      return item.at("reason") == row.reason;
    });
    if (count == 0) continue;
    text += text.empty() ? "Left out: " : ", ";
    text += count == 1 ? row.one : std::to_string(count) + row.many;
  }
  if (!text.empty()) out << text << ".\n";
}

// Of many attributes: what became of those that had not the wanted value, and how many there were.
void ShowMany(const Json& document, std::ostream& out) {
  const bool is_dry = document.value("whatIf", false);
  Counts counts;
  for (const Json& warning : document.value("warnings", Json::array())) {
    out << "warning: " << Escaped(Readable(warning.at("message"))) << '\n';
  }
  const Json& changes = document.at("changes");
  for (std::size_t i = 0; i < changes.size();) i = CountAttribute(changes, i, counts);
  for (const Json& change : changes) {
    const std::string outcome = change.at("outcome");
    const bool is_failed = change.contains("error");
    if (outcome == "already-so") continue;
    out << (outcome == "planned"     ? "would change"
            : outcome == "not-tried" ? "not tried"
                                     : outcome)
        << ": ";
    if (is_failed && outcome != "changed") {
      out << Escaped(Readable(change["error"].at("message"))) << '\n';
    } else {
      out << ChangeText(change);
      if (change.contains("wanted")) out << ", and " << Quoted(change["wanted"]) << " was wanted";
      out << '\n';
    }
  }
  for (const Json& item : document.value("skipped", Json::array())) {
    out << "skipped: " << Escaped(TitleOf(item)) << " is read-only: " << Quoted(item.at("value"))
        << ", in the file " << Quoted(item.at("wanted")) << '\n';
  }
  ShowLeftOut(document.value("leftOut", Json::array()), out);
  out << counts.changed << " changed, " << counts.unchanged << " unchanged, " << counts.failed
      << " failed.\n";
  if (is_dry) out << "Nothing was written.\n";
  if (document.value("restartPending", false)) out << "A restart is pending.\n";
}

void ShowExport(const Json& document, std::ostream& out) {
  out << (document.at("whatIf").get<bool>() ? "Would export " : "Exported ")
      << document.at("exported") << " attributes to " << Escaped(Readable(document.at("file")))
      << ".\n";
  if (document.at("whatIf").get<bool>()) out << "Nothing was written.\n";
}

}  // namespace

std::vector<Face> AttrFaces() {
  return {
      {"attr.list",
       "  mira attr list\n  mira --sim attr list usb\n  mira --sim attr list "
       "--changed-from-default",
       ShowList},
      {"attr.get", "  mira attr get WakeOnLan\n  mira --sim attr get FanFloor VlanId --json",
       ShowGet},
      {"attr.set",
       "  mira --sim attr set WakeOnLan LAN --yes\n"
       "  mira --sim attr set WakeOnLan=LAN FanFloor=20 --yes\n"
       "  mira --sim attr set BootOrder \"UEFI USB Device,UEFI NVMe SSD\" --what-if\n"
       "  mira --sim=locked attr set FanFloor 20 --password-env SETUP_PW --yes\n"
       "  mira --sim attr set OwnerPassword --value-file owner.txt --yes",
       ShowSet},
      {"attr.reset",
       "  mira --sim attr reset FanFloor --yes\n  mira --sim attr reset --all --what-if", ShowMany},
      {"attr.export", "  mira --sim attr export pc.json", ShowExport, nullptr, "attributes"},
      {"attr.import",
       "  mira --sim attr import pc.json --yes\n  mira --sim attr import pc.json --check\n"
       "The file is an export, or one written by hand:\n"
       "  {\"attributes\": {\"WakeOnLan\": \"LAN\", \"FanFloor\": 20}}",
       ShowMany},
      {"attr.diff", "  mira --sim=pending-attributes attr diff", ShowDiff},
  };
}

}  // namespace mira::console
