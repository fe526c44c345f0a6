#ifndef MIRA_CONSOLE_CALL_H_
#define MIRA_CONSOLE_CALL_H_

#include "client/call.h"
#include "console/command.h"

namespace mira::console {

using client::FindCallingInterface;
using client::IsAnnounced;

// What the program ends with after a call.
inline ExitStatus CallExit(Status status, std::int32_t completion) {
  return status == STATUS_FAILURE ? client::ExitOf(completion)
                                  : client::Explain(status).exit_status;
}

}  // namespace mira::console

#endif  // MIRA_CONSOLE_CALL_H_
