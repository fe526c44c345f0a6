// The descriptions of simulated machines.

#include "console/commands.h"
#include "console/commands/snapshot_profile.h"
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

// A profile is sound when a machine comes of it that can be started.
void RequireSound(const sim::Profile& profile, const std::string& path) {
  try {
    sim::Machine machine(profile);
    machine.Reboot();
    const sim::Node state = machine.StateTree();
    machine.TakeState(state);
  } catch (const std::exception& error) {
    throw Error(kInvalidValue, "bad-profile",
                client::Sentence("No machine comes of '" + path + "': " + error.what()), path);
  }
}

Json MakeProfile(client::Request& request) {
  constexpr char kName[] = "the snapshot";
  Json profile;
  try {
    const auto snapshot = client::Snapshot::FromText(request.Text("snapshot"));
    profile = ProfileOf(snapshot, request.Flag("keepIdentity"));
  } catch (const Json::exception&) {
    throw client::MalformedSnapshot(
        "What it has of a subject is not what the subject consists of.");
  }
  try {
    RequireSound(sim::ReadProfile(client::ToText(profile)), kName);
  } catch (const sim::StateError& error) {
    throw Error(kInvalidValue, "bad-profile",
                std::string("No machine comes of the snapshot: ") + error.what(), kName);
  }
  return profile;
}

Json CheckProfile(client::Request& request) {
  const std::string path = request.Text("file");
  const sim::Profile profile = LoadProfileFile(path);
  RequireSound(profile, path);
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
      {.name = "sim.profile.from-snapshot",
       .summary = "Describe the machine of a snapshot, with another identity",
       .effect = Effect::kOffline,
       .arguments = {{.name = "snapshot",
                      .type = client::Type::kContent,
                      .help = "the snapshot",
                      .required = true,
                      .positional = true},
                     {.name = "keepIdentity",
                      .type = client::Type::kFlag,
                      .help = "keep serial numbers, UUIDs, MAC addresses and tags"}},
       .run = MakeProfile},
      {.name = "sim.profile.check",
       .summary = "Check a file that describes a machine",
       .effect = Effect::kOffline,
       .arguments = {{.name = "file", .help = "the file", .required = true, .positional = true}},
       .run = CheckProfile},
  };
}

}  // namespace mira::console
