// The descriptions of simulated machines.

#include "console/commands.h"
#include "console/node_json.h"
#include "console/profile_choice.h"
#include "sim/profile_file.h"

namespace mira::console {
namespace {

Json ListProfiles(client::Request&) {
  Json profiles = Json::array();
  for (const sim::Profile& profile : sim::Profiles()) {
    profiles.push_back({{"name", profile.name}, {"description", profile.description}});
  }
  return {{"profiles", std::move(profiles)}};
}

Json ShowProfile(client::Request& request) {
  const Options& options = OwnRequest::ContextOf(request).GetOptions();
  const sim::Profile profile = ChosenProfile(request.Text("profile", options.profile));
  return {{"profile", client::ParseJson(sim::WriteProfile(profile), "the profile")}};
}

// A file is sound when a machine comes of it that can be started.
Json CheckProfile(client::Request& request) {
  const std::string path = request.Text("file");
  const sim::Profile profile = LoadProfileFile(path);
  try {
    sim::Machine machine(profile);
    machine.Reboot();
    const sim::Node state = machine.StateTree();
    machine.TakeState(state);
  } catch (const std::exception& error) {
    throw Error(kInvalidValue, "bad-profile",
                client::Sentence("No machine comes of '" + path + "': " + error.what()), path);
  }
  return {{"file", path}, {"name", profile.name}, {"description", profile.description}};
}

}  // namespace

std::vector<client::Command> SimProfileCommands() {
  using client::Effect;
  return {
      {.name = "sim.profile.list",
       .summary = "List the built-in machines",
       .effect = Effect::kOffline,
       .run = ListProfiles},
      {.name = "sim.profile.show",
       .summary = "Show a machine's full description",
       .effect = Effect::kOffline,
       .arguments = {{.name = "profile",
                      .help = "a machine's name, or a file that describes one",
                      .positional = true}},
       .run = ShowProfile},
      {.name = "sim.profile.check",
       .summary = "Check a file that describes a machine",
       .effect = Effect::kOffline,
       .arguments = {{.name = "file", .help = "the file", .required = true, .positional = true}},
       .run = CheckProfile},
  };
}

}  // namespace mira::console
