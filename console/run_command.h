#ifndef MIRA_CONSOLE_RUN_COMMAND_H_
#define MIRA_CONSOLE_RUN_COMMAND_H_

#include "client/command.h"
#include "console/command.h"
#include "console/secrets.h"

namespace mira::console {

// Runs a command of the client layer: asks for what it needs, has its changes approved, and shows
// its document or its error. Where the face says so the document, its bytes or the log of its
// writes go to `file`.
ExitStatus RunCommand(Context& context, const client::Command& command, Json arguments,
                      const SecretSlots& secrets, const std::string& file = "");

}  // namespace mira::console

#endif  // MIRA_CONSOLE_RUN_COMMAND_H_
