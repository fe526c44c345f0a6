#ifndef MIRA_CONSOLE_INFO_H_
#define MIRA_CONSOLE_INFO_H_

#include <string>
#include <vector>

#include "console/command.h"

namespace mira::console {

struct StepOutcome {
  std::string name;
  std::string outcome;  // "done", "failed", "not tried", "not asked for"
};

// Init's steps with what its status says of each. The last step is taken only on request.
std::vector<StepOutcome> InitSteps(Status status, bool attributes_asked_for = false);
// The steps, what the facade wrote below the one that failed, and what the status means.
void WriteSteps(std::ostream& out, const Opened& opened);
// "0 1 2", or "none".
std::string ClassList(const std::vector<unsigned>& classes);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_INFO_H_
