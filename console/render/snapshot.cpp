#include "console/face.h"

namespace mira::console {
namespace {

using client::Readable;

void ShowWritten(const Json& document, const char* dry, const char* done, const char* what,
                 std::ostream& out) {
  const bool is_dry = document.at("whatIf").get<bool>();
  out << (is_dry ? dry : done) << document.at("exported") << what
      << Escaped(Readable(document.at("file"))) << ".\n";
  if (is_dry) out << "Nothing was written.\n";
}

void ShowKept(const Json& document, std::ostream& out) {
  ShowWritten(document, "Would keep ", "Kept ", " subjects in ", out);
}

void ShowState(const Json& document, std::ostream& out) {
  ShowWritten(document, "Would write a state of ", "Wrote a state of ", " attributes to ", out);
}

// A value in a line; of a long one its beginning.
std::string Short(const Json& value) {
  constexpr std::size_t kLongest = 60;
  if (value.is_null()) return "nothing";
  std::string text = Readable(value);
  if (text.size() > kLongest) {
    std::size_t end = kLongest;
    // No character is cut in two.
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    text = text.substr(0, end) + "...";
  }
  return "'" + Escaped(text) + "'";
}

// Whether a line can show it: what has many fields is known by its name alone.
bool IsPlain(const Json& value) {
  const bool is_text = value.is_object() && value.contains("text") && value.contains("bytes");
  return !value.is_null() && (!value.is_object() || is_text);
}

void ShowDifference(const std::string& subject, const Json& difference, std::ostream& out) {
  std::string path = Readable(difference.at("path"));
  // The subject stands above, and a value is what is compared.
  path = path == subject ? "all of it" : path.substr(subject.size() + 1);
  constexpr std::string_view kValue = ".value";
  if (path.ends_with(kValue)) path.resize(path.size() - kValue.size());
  const std::string change = difference.at("change");
  const Json& before = difference.at("before");
  const Json& after = difference.at("after");
  if (change == "added") {
    out << "  + " << Escaped(path) << (IsPlain(after) ? ": " + Short(after) : "") << '\n';
  } else if (change == "removed") {
    out << "  - " << Escaped(path) << (IsPlain(before) ? ": " + Short(before) : "") << '\n';
  } else {
    out << "  ~ " << Escaped(path) << ": " << Short(before) << " -> " << Short(after) << '\n';
  }
}

void ShowSide(const char* name, const Json& side, std::ostream& out) {
  out << name << ": ";
  if (side.at("kind") == "state") {
    out << "a desired state";
    if (side.contains("name")) out << ", " << Escaped(Readable(side["name"]));
  } else {
    const Json& machine = side.at("machine");
    std::string title;
    for (const char* const key : {"manufacturer", "product", "serialNumber"}) {
      if (machine.contains(key)) title += (title.empty() ? "" : " ") + Readable(machine[key]);
    }
    out << (title.empty() ? "a machine" : Escaped(title)) << ", "
        << Escaped(Readable(side.at("takenAt")));
  }
  out << '\n';
}

void ShowComparison(const Json& document, std::ostream& out) {
  ShowSide("A", document.at("a"), out);
  ShowSide("B", document.at("b"), out);
  if (document.at("same").get<bool>()) {
    out << "\nThey do not differ.\n";
    return;
  }
  for (const Json& subject : document.at("subjects")) {
    out << '\n' << Readable(subject.at("title")) << '\n';
    for (const Json& difference : subject.at("differences")) {
      ShowDifference(subject.at("subject"), difference, out);
    }
  }
  const Json& counts = document.at("counts");
  out << '\n'
      << counts.at("changed") << " changed, " << counts.at("added") << " added, "
      << counts.at("removed") << " removed.\n";
}

}  // namespace

std::vector<Face> SnapshotFaces() {
  return {
      {.command = "snapshot",
       .examples = "  mira --sim snapshot pc.snapshot\n"
                   "  mira --sim snapshot --redact report.snapshot\n"
                   "  mira --sim snapshot --value machine.product\n"
                   "  mira boot show --from pc.snapshot",
       .render = ShowKept,
       .saves = "subjects",
       .is_private = true},
      {.command = "compare",
       .examples = "  mira --sim compare pc.snapshot live\n"
                   "  mira compare pc.snapshot other.snapshot --only attributes --only boot\n"
                   "  mira compare pc.snapshot other.snapshot --ignore inventory.memorySlots\n"
                   "  mira --sim compare wanted.state live --check",
       .render = ShowComparison},
      {.command = "state.from",
       .examples = "  mira state from pc.snapshot wanted.state\n"
                   "  mira state from pc.snapshot --value boot",
       .render = ShowState,
       .saves = "attributes",
       .is_private = true},
  };
}

}  // namespace mira::console
