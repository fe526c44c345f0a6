// Any bytes as a file that a command reads: the first byte chooses the command.

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>

#include "fuzz/support/discard.h"
#include "fuzz/support/rows.h"
#include "fuzz/support/session.h"
#include "sim/machine.h"
#include "sim/profile_file.h"

namespace {

using mira::client::Json;
using mira::fuzz::kFileCommands;

void ReadAsProfile(const std::string& content) {
  try {
    const mira::sim::Profile profile = mira::sim::ReadProfile(content);
    // What was read is a machine, and can be written and read again.
    const mira::sim::Machine machine(profile);
    mira::sim::ReadProfile(mira::sim::WriteProfile(profile));
  } catch (const mira::sim::StateError&) {
  }
}

void ReadAsState(const std::string& content) {
  mira::sim::Machine machine;
  try {
    machine.RestoreState(content);
  } catch (const mira::sim::StateError&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const mira::fuzz::SilentStreams silent;
  if (size < 1) return 0;
  const std::string content(data + 1, data + size);
  const std::size_t choice = data[0] % (std::size(kFileCommands) + 2);
  if (choice == std::size(kFileCommands)) {
    ReadAsProfile(content);
    return 0;
  }
  if (choice > std::size(kFileCommands)) {
    ReadAsState(content);
    return 0;
  }
  const auto& command = kFileCommands[choice];
  static mira::sim::Machine machine;
  const mira::sim::Session in_force(machine);
  Json arguments = Json::parse(command.arguments);
  arguments[command.file_argument] = content;
  mira::fuzz::RunCommand(command.name, std::move(arguments));
  return 0;
}
