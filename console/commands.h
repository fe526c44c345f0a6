#ifndef MIRA_CONSOLE_COMMANDS_H_
#define MIRA_CONSOLE_COMMANDS_H_

#include "console/command.h"

namespace mira::console {

// One source in console/commands/ each.
void AddBattery(CLI::App& app, Command& command);
void AddBoot(CLI::App& app, Command& command);
void AddAttr(CLI::App& app, Command& command);
void AddCall(CLI::App& app, Command& command);
void AddConsole(CLI::App& app, Command& command);
void AddHdd(CLI::App& app, Command& command);
void AddId(CLI::App& app, Command& command);
void AddInfo(CLI::App& app, Command& command);
void AddLog(CLI::App& app, Command& command);
void AddPassword(CLI::App& app, Command& command);
void AddSim(CLI::App& app, Command& command);
void AddSmbios(CLI::App& app, Command& command);
void AddTag(CLI::App& app, Command& command);
void AddThermal(CLI::App& app, Command& command);
void AddTokens(CLI::App& app, Command& command);
void AddTour(CLI::App& app, Command& command);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_COMMANDS_H_
