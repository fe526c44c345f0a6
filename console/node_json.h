#ifndef MIRA_CONSOLE_NODE_JSON_H_
#define MIRA_CONSOLE_NODE_JSON_H_

#include "console/output.h"
#include "sim/state_document.h"

namespace mira::console {

// A tree of the simulated machine as a document shows it: secrets are masked.
Json JsonOf(const sim::Node& node);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_NODE_JSON_H_
