#include "console/changes.h"
#include "console/commands.h"

namespace mira::console {
namespace {

sim::Machine& SimulatedMachine(Context& context) {
  if (context.Machine() == nullptr) {
    throw CommandError(kUsage, "not-simulated", "This is about simulated machines.", "",
                       "--sim or --sim=PROFILE names one.");
  }
  return *context.Machine();
}

ExitStatus Show(Context& context) {
  sim::Machine& machine = SimulatedMachine(context);
  context.CheckMachine();
  const sim::Profile& profile = machine.GetProfile();
  const std::string file = PathText(context.MachineFile());
  const int boots = machine.GetFirmware().BootCount();
  if (context.IsJson()) {
    context.Print({{"profile", profile.name},
                   {"description", profile.description},
                   {"boots", boots},
                   {"keptIn", file.empty() ? Json() : Json(file)}});
    return kDone;
  }
  WriteTable(context.Out(), {{"Profile", profile.name},
                             {"Machine", profile.description},
                             {"Started", std::to_string(boots) + (boots == 1 ? " time" : " times")},
                             {"Kept in", file.empty() ? "nowhere" : file}});
  return kDone;
}

ExitStatus Reboot(Context& context) {
  sim::Machine& machine = SimulatedMachine(context);
  context.CheckMachine();
  const int boots = machine.GetFirmware().BootCount();
  const Changes changes = {{"starts", std::to_string(boots), std::to_string(boots + 1)}};
  if (!Approve(context, changes)) return ReportWhatIf(context, changes);
  machine.Reboot();
  if (context.IsJson()) {
    context.Print({{"boots", boots + 1}});
  } else {
    context.Out() << "The machine has restarted.\n";
  }
  return kDone;
}

ExitStatus Reset(Context& context) {
  SimulatedMachine(context);
  const Changes changes = {{"machine", "as it is kept", "new"}};
  if (!Approve(context, changes)) return ReportWhatIf(context, changes);
  try {
    sim::KeptMachine::Reset(context.MachineFile());
  } catch (const sim::StateError& error) {
    throw CommandError(kUnexpected, "not-removed", error.what(), PathText(context.MachineFile()));
  }
  if (context.IsJson()) {
    context.Print({{"reset", true}});
  } else {
    context.Out() << "The next command finds a new machine.\n";
  }
  return kDone;
}

}  // namespace

void AddSim(CLI::App& app, Command& command) {
  app.require_subcommand(1);
  app.footer(
      "A simulated machine is kept between commands: later ones see what earlier ones changed. "
      "The\n"
      "environment variable MIRA_SIM_STATE names the folder; set to nothing, every command finds "
      "a\n"
      "new machine. The file holds the machine's passwords, as the memory of a real one does.\n"
      "Examples:\n  mira --sim sim show\n  mira --sim=locked sim reboot --yes\n  mira --sim sim "
      "reset --yes");
  command.Run(*app.add_subcommand("show", "Show the machine and where it is kept"), Show);
  command.Run(*app.add_subcommand("reboot", "Restart the machine: pending changes come into force"),
              Reboot);
  command.Run(*app.add_subcommand("reset", "Start over with a new machine"), Reset);
}

}  // namespace mira::console
