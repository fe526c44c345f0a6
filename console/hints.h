#ifndef MIRA_CONSOLE_HINTS_H_
#define MIRA_CONSOLE_HINTS_H_

#include <string>
#include <string_view>

#include "console/command.h"

namespace mira::console {

// What to do about an error of this name; empty where there is nothing to say.
std::string HintFor(std::string_view error_name, const Options& options);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_HINTS_H_
