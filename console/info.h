#ifndef MIRA_CONSOLE_INFO_H_
#define MIRA_CONSOLE_INFO_H_

#include <string>
#include <vector>

#include "console/command.h"

namespace mira::console {

struct StepOutcome {
  std::string name;
  std::string outcome;  // "done", "failed", "not tried"
};

// Init's steps with what its status says of each.
std::vector<StepOutcome> InitSteps(Status status);
void WriteSteps(std::ostream& out, const Opened& opened);
// The command classes in the bitmap of the calling interface.
std::vector<unsigned> AnnouncedClasses(CMiraIntf& mira);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_INFO_H_
