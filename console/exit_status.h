#ifndef MIRA_CONSOLE_EXIT_STATUS_H_
#define MIRA_CONSOLE_EXIT_STATUS_H_

#include "client/error.h"

namespace mira::console {

// What the program ends with.
using client::ExitStatus;
using enum client::ExitStatus;

}  // namespace mira::console

#endif  // MIRA_CONSOLE_EXIT_STATUS_H_
