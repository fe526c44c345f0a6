#include "sim/process_machine.h"

#include "sim/chosen_profile.h"
#include "sim/environment.h"
#include "sim/mira_sim.h"
#include "sim/profile_file.h"

namespace mira::sim {
namespace {

constexpr char kMachineVariable[] = "MIRA_SIM";
constexpr char kFolderVariable[] = "MIRA_SIM_STATE";
constexpr std::string_view kThisPc = "real";

MachinePtr MakeOf(const std::string& name, const Profile& profile,
                  const std::filesystem::path& file) {
  try {
    return std::make_shared<ControlledMachine>(name, profile, file);
  } catch (const StateError& error) {
    const std::u8string text = file.u8string();
    const std::string target(text.begin(), text.end());
    throw ChoiceError(MIRA_SIM_UNEXPECTED, "machine-unreadable",
                      "The simulated machine in '" + target + "' cannot be read: " + error.what(),
                      target);
  }
}

ChoiceError BadProfile(const std::string& name, const StateError& error) {
  return ChoiceError(
      MIRA_SIM_INVALID_VALUE, "bad-profile",
      "'" + name + "' describes no simulated machine: " + std::string(error.what()) + ".", name);
}

}  // namespace

MachinePtr MakeNamed(const std::string& name, const std::filesystem::path& file) {
  try {
    return MakeOf(name, ChooseProfile(name), file);
  } catch (const UnknownProfile&) {
    throw ChoiceError(MIRA_SIM_NOT_FOUND, "unknown-profile",
                      "There is no simulated machine called '" + name + "'.", name);
  } catch (const StateError& error) {
    throw BadProfile(name, error);
  }
}

MachinePtr MakeDescribed(const std::string& json, const std::filesystem::path& file) {
  Profile profile;
  try {
    profile = ReadProfile(json);
  } catch (const StateError& error) {
    throw BadProfile("simulated", error);
  }
  return MakeOf(profile.name.empty() ? "simulated" : profile.name, profile, file);
}

ProcessMachine& ProcessMachine::Get() {
  static ProcessMachine& machine = *new ProcessMachine();
  return machine;
}

MachinePtr ProcessMachine::Use() {
  if (machine_) return machine_;
  if (make_) return machine_ = make_();
  const std::string name = EnvironmentText(kMachineVariable).value_or("");
  if (name.empty()) {
    throw ChoiceError(MIRA_SIM_NOT_FOUND, "no-machine",
                      "The environment variable MIRA_SIM names no machine; 'real' is this PC.",
                      kMachineVariable);
  }
  if (name == kThisPc) return nullptr;
  const std::string folder = EnvironmentText(kFolderVariable).value_or("");
  const std::filesystem::path file =
      folder.empty() ? std::filesystem::path() : FilePath(folder) / KeptName(name);
  return machine_ = MakeNamed(name, file);
}

void ProcessMachine::Choose(std::function<MachinePtr()> make, MachinePtr made) {
  make_ = std::move(make);
  machine_ = std::move(made);
}

}  // namespace mira::sim
