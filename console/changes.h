#ifndef MIRA_CONSOLE_CHANGES_H_
#define MIRA_CONSOLE_CHANGES_H_

// What every command does before it writes: show, ask, or stop.
//
//   const Changes changes = {{"asset tag", old_tag, new_tag}};
//   if (!Approve(context, changes)) return ReportWhatIf(context, changes);
//   ... write ...

#include <functional>
#include <string>
#include <vector>

#include "console/command.h"

namespace mira::console {

struct Change {
  std::string target;  // "asset tag"
  std::string before;
  std::string after;
};
using Changes = std::vector<Change>;

// True when the changes may be written: --yes, or a "y" at the terminal. False with --what-if.
// Throws CommandError with status 8 when nobody can be asked, or the answer is no.
bool Approve(Context& context, const Changes& changes);

// Shows what would be written and ends with 0.
ExitStatus ReportWhatIf(Context& context, const Changes& changes);

Json ToJson(const Changes& changes);

// From the question to the report: approves, writes and says what was changed. `document` has what
// a program is told beyond that. Nothing is written or asked where there is nothing to change.
ExitStatus MakeChanges(Context& context, const Changes& changes, const Json& document,
                       const std::function<void()>& write);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_CHANGES_H_
