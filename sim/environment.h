#ifndef MIRA_SIM_ENVIRONMENT_H_
#define MIRA_SIM_ENVIRONMENT_H_

// What the process's environment says, as it is now.
//
//   const std::optional<std::string> machine = EnvironmentText("MIRA_SIM");

#include <optional>
#include <string>

namespace mira::sim {

// The variable's text in UTF-8; nothing when it is not set.
std::optional<std::string> EnvironmentText(const char* name);

}  // namespace mira::sim

#endif  // MIRA_SIM_ENVIRONMENT_H_
