#include "client/commands.h"

#include <algorithm>
#include <iterator>

namespace mira::client {
namespace {

// What is asked of the firmware, and not read from it, no snapshot can answer; and some commands
// take snapshots anyway.
void TakeSnapshots(Command& command) {
  if (command.effect != Effect::kReads || !command.secrets.empty()) return;
  const bool takes_files =
      std::any_of(command.arguments.begin(), command.arguments.end(),
                  [](const Argument& a) { return a.type == Type::kContent && a.required; });
  if (takes_files) return;
  command.arguments.push_back(kSnapshotArgument);
  command.works_offline = true;
}

}  // namespace

const std::vector<Command>& Commands() {
  static const std::vector<Command> all = [] {
    std::vector<Command> list;
    for (const auto subject :
         {StartUpCommands, SmbiosCommands, InventoryCommands, TokenCommands, CallCommands,
          AttributeCommands, PasswordCommands, DriveCommands, TagCommands, IdentifierCommands,
          BatteryCommands, FirmwareListCommands, BootCommands, LegacyBootCommands, SnapshotCommands,
          ReportCommands, ApplyCommands}) {
      std::vector<Command> some = subject();
      for (Command& command : some) TakeSnapshots(command);
      std::move(some.begin(), some.end(), std::back_inserter(list));
    }
    return list;
  }();
  return all;
}

const Command* FindCommand(std::string_view name) {
  const std::vector<Command>& all = Commands();
  const auto found =
      std::find_if(all.begin(), all.end(), [name](const Command& c) { return c.name == name; });
  return found != all.end() ? &*found : nullptr;
}

}  // namespace mira::client
