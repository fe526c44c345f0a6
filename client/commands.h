#ifndef MIRA_CLIENT_COMMANDS_H_
#define MIRA_CLIENT_COMMANDS_H_

// The commands of each subject. A new subject is declared here and listed in commands.cpp.

#include <vector>

#include "client/command.h"

namespace mira::client {

std::vector<Command> ApplyCommands();
std::vector<Command> AttributeCommands();
std::vector<Command> BatteryCommands();
std::vector<Command> BootCommands();
std::vector<Command> CallCommands();
std::vector<Command> DriveCommands();
std::vector<Command> FirmwareListCommands();
std::vector<Command> IdentifierCommands();
std::vector<Command> InventoryCommands();
std::vector<Command> LegacyBootCommands();
std::vector<Command> PasswordCommands();
std::vector<Command> ReportCommands();
std::vector<Command> SmbiosCommands();
std::vector<Command> SnapshotCommands();
std::vector<Command> StartUpCommands();
std::vector<Command> TagCommands();
std::vector<Command> TokenCommands();

}  // namespace mira::client

#endif  // MIRA_CLIENT_COMMANDS_H_
