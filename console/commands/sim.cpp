// The simulated machine that is kept between commands.

#include "console/commands.h"

namespace mira::console {
namespace {

// A new machine has no file: it is made when something is first kept.
constexpr char kNew[] = "new";
constexpr char kKept[] = "kept";
constexpr char kUnreadable[] = "unreadable";

Context& SimulatedContext(client::Request& request) {
  Context& context = OwnRequest::ContextOf(request);
  if (context.Machine() != nullptr) return context;
  throw Error(kUsage, "not-simulated",
              "Only a simulated machine can be shown, restarted or reset.");
}

Json Show(client::Request& request) {
  Context& context = SimulatedContext(request);
  context.CheckMachine();
  const sim::Profile& profile = context.Machine()->GetProfile();
  const std::string file = PathText(context.MachineFile());
  return {{"profile", profile.name},
          {"description", profile.description},
          {"boots", context.Machine()->GetFirmware().BootCount()},
          {"keptIn", file.empty() ? Json() : Json(file)}};
}

Json Reboot(client::Request& request) {
  Context& context = SimulatedContext(request);
  context.CheckMachine();
  sim::Machine& machine = *context.Machine();
  const auto boots = [&machine] { return Json(machine.GetFirmware().BootCount()); };
  const std::string& name = machine.GetProfile().name;
  client::Plan plan;
  plan.subject = {{"profile", name}};
  plan.needs_key = false;
  plan.steps.push_back(
      {.changes = {{.target = "boots of the simulated machine '" + name + "'",
                    .before = boots(),
                    .after = machine.GetFirmware().BootCount() + 1}},
       .read = [boots](client::Session&) { return std::vector{boots()}; },
       .write = [&machine](client::Session&, const client::Key&) { machine.Reboot(); }});
  return request.Carry(plan);
}

Json Reset(client::Request& request) {
  Context& context = SimulatedContext(request);
  const std::filesystem::path file = context.MachineFile();
  const auto state = [&context, file]() -> Json {
    std::error_code error;
    if (!std::filesystem::exists(file, error)) return kNew;
    return context.MachineProblem().empty() ? kKept : kUnreadable;
  };
  const std::string& name = context.Machine()->GetProfile().name;
  client::Plan plan;
  plan.subject = {{"profile", name}};
  plan.needs_key = false;
  plan.steps.push_back({.changes = {{.target = "state of the simulated machine '" + name + "'",
                                     .before = state(),
                                     .after = kNew}},
                        .read = [state](client::Session&) { return std::vector{state()}; },
                        .write =
                            [file](client::Session&, const client::Key&) {
                              try {
                                sim::KeptMachine::Reset(file);
                              } catch (const sim::StateError& error) {
                                throw Error(kUnexpected, "not-removed", error.what(),
                                            PathText(file));
                              }
                            }});
  return request.Carry(plan);
}

}  // namespace

std::vector<client::Command> SimCommands() {
  return {
      {.name = "sim.show", .summary = "Show the machine and where it is kept", .run = Show},
      {.name = "sim.reboot",
       .summary = "Restart the machine: pending changes come into force",
       .effect = client::Effect::kChanges,
       .run = Reboot},
      {.name = "sim.reset",
       .summary = "Start over with a new machine",
       .effect = client::Effect::kChanges,
       .run = Reset},
  };
}

}  // namespace mira::console
