#ifndef MIRA_SIM_CHOSEN_PROFILE_H_
#define MIRA_SIM_CHOSEN_PROFILE_H_

// A machine as people name it: one that comes along, or a file that describes one.
//
//   Machine machine(ChooseProfile("kiosk.json"));
//   KeptMachine kept(machine, KeptName("kiosk.json"));

#include <filesystem>
#include <string>

#include "sim/profile.h"
#include "sim/state_document.h"

namespace mira::sim {

// There is no machine of this name.
struct UnknownProfile : StateError {
  using StateError::StateError;
};

// Whether a machine's name is that of a file.
bool IsProfileFile(const std::string& name);

// Throws UnknownProfile, or StateError for a file that describes no machine.
Profile ChooseProfile(const std::string& name);

// What the machine's file is called in the folder that machines are kept in. Machines of different
// files stay apart.
std::filesystem::path KeptName(const std::string& name);

// A file's name in UTF-8.
std::filesystem::path FilePath(const std::string& utf8);

}  // namespace mira::sim

#endif  // MIRA_SIM_CHOSEN_PROFILE_H_
