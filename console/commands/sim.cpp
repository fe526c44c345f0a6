// The simulated machine that is kept between commands.

#include "console/commands.h"

namespace mira::console {
namespace {

// A new machine has no file: it is made when something is first kept.
constexpr char kNew[] = "new";
constexpr char kKept[] = "kept";
constexpr char kUnreadable[] = "unreadable";

Json Show(client::Request& request) {
  Context& context = ReadableContext(request);
  const sim::Profile& profile = context.Machine()->GetProfile();
  const std::string file = PathText(context.MachineFile());
  return {{"profile", profile.name},
          {"description", profile.description},
          {"boots", context.Machine()->GetFirmware().BootCount()},
          {"off", context.Machine()->GetFirmware().IsOff()},
          {"keptIn", file.empty() ? Json() : Json(file)}};
}

Json Reboot(client::Request& request) {
  sim::Machine& machine = *ReadableContext(request).Machine();
  const bool loses_power = request.Flag("powerLoss");
  const auto boots = [&machine] { return Json(machine.GetFirmware().BootCount()); };
  const std::string& name = machine.GetProfile().name;
  client::Plan plan;
  plan.subject = {{"profile", name}};
  plan.needs_key = false;
  plan.steps.push_back({.changes = {{.target = "boots of the simulated machine '" + name + "'",
                                     .before = boots(),
                                     .after = machine.GetFirmware().BootCount() + 1}},
                        .read = [boots](client::Session&) { return std::vector{boots()}; },
                        .write =
                            [&machine, loses_power](client::Session&, const client::Key&) {
                              if (loses_power) {
                                machine.LosePower();
                              } else {
                                machine.Reboot();
                              }
                            }});
  return request.Carry(plan);
}

Json Reset(client::Request& request) {
  Context& context = SimulatedContext(request);
  const std::filesystem::path file = context.MachineFile();
  const auto state = [&context, file]() -> Json {
    if (!sim::KeptMachine::IsThere(file)) return kNew;
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
                                throw Error(kUnexpected, "not-removed",
                                            client::Sentence(error.what()), PathText(file));
                              }
                            }});
  return request.Carry(plan);
}

}  // namespace

Context& SimulatedContext(client::Request& request) {
  Context& context = OwnRequest::ContextOf(request);
  if (context.Machine() != nullptr) return context;
  throw Error(kUsage, "not-simulated", "This is only done on a simulated machine.");
}

Context& ReadableContext(client::Request& request) {
  Context& context = SimulatedContext(request);
  context.CheckMachine();
  return context;
}

std::vector<client::Command> SimCommands() {
  return {
      {.name = "sim.show", .summary = "Show the machine and where it is kept", .run = Show},
      {.name = "sim.reboot",
       .summary = "Restart the machine: pending changes come into force",
       .effect = client::Effect::kChanges,
       .arguments = {{.name = "powerLoss",
                      .type = client::Type::kFlag,
                      .help = "as after a loss of power: what an orderly restart writes is lost"}},
       .run = Reboot},
      {.name = "sim.reset",
       .summary = "Start over with a new machine",
       .effect = client::Effect::kChanges,
       .run = Reset},
  };
}

}  // namespace mira::console
