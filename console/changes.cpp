#include "console/changes.h"

#include <algorithm>
#include <iterator>

#include "console/terminal.h"

namespace mira::console {
namespace {

void Write(std::ostream& out, const Changes& changes) {
  for (const Change& change : changes) {
    out << change.target << ": '" << ToUtf8(change.before) << "' -> '" << ToUtf8(change.after)
        << "'\n";
  }
}

}  // namespace

bool Approve(Context& context, const Changes& changes) {
  if (context.GetOptions().what_if) return false;
  if (context.GetOptions().yes) return true;
  const std::string target = changes.size() == 1 ? changes.front().target : "";
  if (!context.IsInteractive()) {
    throw CommandError(kNeedsConfirmation, "confirmation-needed",
                       "This changes the machine and nobody can be asked.", target,
                       "--yes goes ahead, --what-if shows what would be written.");
  }
  std::ostringstream question;
  Write(question, changes);
  WriteToTerminal(question.str() + "Write this? [y/N] ");
  std::string answer;
  std::getline(context.In(), answer);
  if (answer != "y" && answer != "Y" && answer != "yes") {
    throw CommandError(kNeedsConfirmation, "not-confirmed", "Nothing was written.", target);
  }
  return true;
}

ExitStatus ReportWhatIf(Context& context, const Changes& changes) {
  if (context.IsJson()) {
    context.Print({{"whatIf", true}, {"changes", ToJson(changes)}});
  } else {
    Write(context.Out(), changes);
    context.Out() << "Nothing was written.\n";
  }
  return kDone;
}

Json ToJson(const Changes& changes) {
  Json list = Json::array();
  for (const Change& change : changes) {
    list.push_back({{"target", change.target},
                    {"before", ToUtf8(change.before)},
                    {"after", ToUtf8(change.after)}});
  }
  return list;
}

ExitStatus MakeChanges(Context& context, const Changes& changes, const Json& document,
                       const std::function<void()>& write) {
  Changes real;
  std::copy_if(changes.begin(), changes.end(), std::back_inserter(real),
               [](const Change& change) { return change.before != change.after; });
  if (!real.empty()) {
    if (!Approve(context, real)) return ReportWhatIf(context, real);
    write();
  }
  if (context.IsJson()) {
    Json whole = document;
    whole["changed"] = !real.empty();
    whole["changes"] = ToJson(real);
    context.Print(whole);
  } else if (real.empty()) {
    context.Out() << "It is so already.\n";
  } else {
    Write(context.Out(), real);
  }
  return kDone;
}

}  // namespace mira::console
