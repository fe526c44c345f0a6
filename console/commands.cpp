#include "console/commands.h"

#include <algorithm>
#include <iterator>

namespace mira::console {

const std::vector<Noun>& Nouns() {
  static const std::vector<Noun> nouns = {
      {"tour", "Show the main job once: start-up, structures, calling interface, one call",
       AddTour},
      {"info", "Show what is available on this machine", nullptr},
      {"smbios", "Show, save or decode the SMBIOS table", nullptr},
      {"inventory", "Show the machine: processors, memory, firmware, slots, batteries", nullptr},
      {"tokens", "List the calling interface's tokens", nullptr},
      {"call", "Make one calling-interface call", nullptr},
      {"attr", "List, show, change, save and restore BIOS attributes", nullptr},
      {"apply", "Bring the machine into a desired state", nullptr},
      {"password", "Show, verify or change the BIOS passwords", nullptr},
      {"hdd", "List drives; verify, set or clear their passwords", nullptr},
      {"tag", "Show or set the asset, service, ownership and extended tags", nullptr},
      {"id", "Show or set MAC address, ePPID, image server and thin client", nullptr},
      {"battery", "Show or set how the batteries are charged", nullptr},
      {"log", "Show the firmware's log, its messages, a tablet's scan codes", nullptr},
      {"thermal", "Show the thermal sensors", nullptr},
      {"boot", "Show and change the boot order, decode load options", nullptr},
      {"snapshot", "Keep all that can be read of a machine in one document", nullptr},
      {"report", "Show all that can be read of a machine on one page for people", nullptr},
      {"compare", "Show what differs between two machines, or between one and what it should be",
       nullptr},
      {"state", "Make desired states", nullptr},
      {"sim", "Control the simulated machine: restarts, faults, journal, states, profiles",
       nullptr},
      {"completion", "Write completion scripts for shells, and the manual page", nullptr},
      {"console", "Make calls interactively, with the commands' own prompts and displays",
       AddConsole},
  };
  return nouns;
}

const std::vector<client::Command>& Commands() {
  static const std::vector<client::Command> all = [] {
    std::vector<client::Command> list = client::Commands();
    for (const auto subject : {SimCommands, SimFaultCommands, SimStateCommands, SimProfileCommands,
                               CompletionCommands}) {
      std::vector<client::Command> own = subject();
      std::move(own.begin(), own.end(), std::back_inserter(list));
    }
    return list;
  }();
  return all;
}

const client::Command* FindCommand(std::string_view name) {
  const auto& all = Commands();
  const auto found =
      std::find_if(all.begin(), all.end(), [name](const auto& c) { return c.name == name; });
  return found != all.end() ? &*found : nullptr;
}

bool IsOwn(const client::Command& command) { return client::FindCommand(command.name) == nullptr; }

}  // namespace mira::console
