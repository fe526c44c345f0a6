#include <algorithm>
#include <map>

#include "console/face.h"

namespace mira::console {
namespace {

using client::Readable;

std::string QuotedValue(const Json& value) {
  if (value.is_boolean()) return value.get<bool>() ? "'on'" : "'off'";
  return "'" + Escaped(Readable(value)) + "'";
}

std::string ArrowText(const Json& change, const char* after) {
  return QuotedValue(change.at("before")) + " -> " + QuotedValue(change.at(after));
}

std::string ProblemText(const Json& change) {
  if (!change.contains("error")) return "";
  // Many messages begin with what they are about, which stands in front already.
  const std::string start = Readable(change.at("target")) + ": ";
  std::string message = Readable(change["error"].at("message"));
  if (message.starts_with(start)) message.erase(0, start.size());
  return ": " + Escaped(message);
}

// What became of an entry, behind its target.
std::string FateOf(const Json& change) {
  const std::string outcome = change.at("outcome");
  const bool has_other = change.contains("wanted");
  if (outcome == "waiting") {
    if (change.contains("note")) return " " + Escaped(Readable(change["note"]));
    return " stays " + QuotedValue(change.at("before")) + " until a restart; " +
           QuotedValue(change.at(has_other ? "wanted" : "after")) + " is wanted";
  }
  if (outcome == "refused" || outcome == "failed") {
    const bool has_values = !change.at("before").is_null() || !change.at("after").is_null();
    return (has_values ? " " + ArrowText(change, has_other ? "wanted" : "after") : "") + " " +
           outcome + ProblemText(change);
  }
  if (change.value("secret", false)) {
    if (outcome == "planned") return " gets a new value";
    if (outcome == "not-tried") return " is left alone: secrets are not written";
    return " was given its value, which cannot be read back";
  }
  std::string text = " " + ArrowText(change, "after");
  if (outcome == "not-tried") text += " (not tried)";
  if (outcome == "unknown") text += " (unknown whether it was taken)" + ProblemText(change);
  if (has_other) text += " (" + QuotedValue(change["wanted"]) + " was wanted)";
  if (change.value("restartPending", false) && outcome == "changed") {
    text += ", in force after a restart";
  }
  return text;
}

void ShowSkipped(const Json& skipped, std::ostream& out) {
  const std::string entry = Readable(skipped.at("entry"));
  out << "  " << (entry.empty() ? "The state" : Escaped(entry)) << ": skipped, ";
  if (!skipped.contains("condition")) {
    out << "there is no such thing here\n";
    return;
  }
  const Json& condition = skipped["condition"];
  const std::string actual = Readable(condition.at("actual"));
  out << Escaped(Readable(condition.at("fact"))) << " is "
      << (actual.empty() ? "not stated" : "'" + Escaped(actual) + "'") << '\n';
}

void ShowApply(const Json& document, std::ostream& out) {
  if (!document.contains("changes")) return;
  // As they are counted at the end.
  constexpr const char* kOutcomes[] = {"changed", "planned", "already-so", "waiting",
                                       "refused", "failed",  "unknown",    "not-tried"};
  std::map<std::string, std::size_t> counts;
  for (const Json& change : document.at("changes")) {
    const std::string outcome = change.at("outcome");
    ++counts[outcome];
    if (outcome == "already-so") continue;
    out << "  " << Escaped(Readable(change.at("target"))) << FateOf(change) << '\n';
  }
  for (const Json& skipped : document.at("skipped")) ShowSkipped(skipped, out);
  RenderNotes(document, out);
  std::string sum;
  for (const char* const outcome : kOutcomes) {
    if (!counts.contains(outcome)) continue;
    sum += (sum.empty() ? "" : ", ") + std::to_string(counts[outcome]) + " " + outcome;
  }
  const std::size_t skipped = document.at("skipped").size();
  if (skipped != 0) sum += (sum.empty() ? "" : ", ") + std::to_string(skipped) + " skipped";
  out << (sum.empty() ? "The state wants nothing" : sum) << ".\n";
  if (document.value("whatIf", false)) {
    out << "Nothing was written.\n";
  } else if (document.value("restartPending", false)) {
    out << "A restart is pending.\n";
  }
}

}  // namespace

std::vector<Face> ApplyFaces() {
  return {{.command = "apply",
           .examples = "  mira --sim apply state.json --what-if\n"
                       "  mira --sim apply state.json --yes --log apply.log\n"
                       "  mira --sim=locked apply - --yes --json < state-with-secrets.json\n"
                       "docs/state.md describes the state's form.",
           .render = ShowApply,
           .logs = true}};
}

}  // namespace mira::console
