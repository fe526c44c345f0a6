#ifndef MIRA_CONSOLE_COMMANDS_H_
#define MIRA_CONSOLE_COMMANDS_H_

#include "console/command.h"

namespace mira::console {

// One source in console/commands/ each.
void AddConsole(CLI::App& app, Command& command);
void AddSim(CLI::App& app, Command& command);
void AddTour(CLI::App& app, Command& command);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_COMMANDS_H_
