#ifndef MIRA_CONSOLE_CHANGES_H_
#define MIRA_CONSOLE_CHANGES_H_

// What every command does before it writes: show, ask, or stop.
//
//   const Changes changes = {{"asset tag", old_tag, new_tag}};
//   if (!Approve(context, changes)) return ReportWhatIf(context, changes);
//   ... write ...

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

}  // namespace mira::console

#endif  // MIRA_CONSOLE_CHANGES_H_
