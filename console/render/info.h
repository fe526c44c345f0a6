#ifndef MIRA_CONSOLE_RENDER_INFO_H_
#define MIRA_CONSOLE_RENDER_INFO_H_

#include <ostream>
#include <string>

#include "console/output.h"

namespace mira::console {

// The steps of a start-up, with what to do about the one that failed.
void RenderSteps(const Json& document, std::ostream& out);
// "0 1 2", or "none".
std::string ClassList(const Json& classes);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_RENDER_INFO_H_
