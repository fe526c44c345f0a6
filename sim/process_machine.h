#ifndef MIRA_SIM_PROCESS_MACHINE_H_
#define MIRA_SIM_PROCESS_MACHINE_H_

// The machine that a process works on in the simulator's builds of the DLLs: the one that MIRA_SIM
// names, or that was chosen at run time.
//
//   if (const MachinePtr machine = ProcessMachine::Get().Use()) {
//     Session session(machine->GetMachine());
//   }

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "sim/controlled_machine.h"

namespace mira::sim {

using MachinePtr = std::shared_ptr<ControlledMachine>;

// Why there is no machine, as an error of the interfaces: a status of mira_sim.h, a name, and what
// it is about.
struct ChoiceError : std::runtime_error {
  ChoiceError(std::int32_t its_status, const char* its_name, const std::string& what,
              std::string its_target = {})
      : std::runtime_error(what),
        status(its_status),
        name(its_name),
        target(std::move(its_target)) {}
  std::int32_t status;
  const char* name;
  std::string target;
};

// A machine that is named, or described by a profile's JSON text, in which case the name is only
// what it is called. With a file it is kept. Throws ChoiceError.
MachinePtr MakeNamed(const std::string& name, const std::filesystem::path& file);
MachinePtr MakeDescribed(const std::string& json, const std::filesystem::path& file);

class ProcessMachine {
 public:
  // The process's. It has no end, since a host may have.
  static ProcessMachine& Get();

  // Made when it is first used, or used again after it was forgotten. Null: this PC. Throws
  // ChoiceError.
  MachinePtr Use();
  // From now on `made`, which `make` makes anew after it was forgotten. Both null: what MIRA_SIM
  // says.
  void Choose(std::function<MachinePtr()> make, MachinePtr made);
  void Forget() { machine_.reset(); }

 private:
  std::function<MachinePtr()> make_;
  MachinePtr machine_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_PROCESS_MACHINE_H_
