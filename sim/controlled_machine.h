#ifndef MIRA_SIM_CONTROLLED_MACHINE_H_
#define MIRA_SIM_CONTROLLED_MACHINE_H_

// A simulated machine with faults and a journal that can be asked for at run time, whether it lives
// with the process or in a file that programs share.
//
//   ControlledMachine machine("laptop", ChooseProfile("laptop"), {});
//   machine.AddFault({.operation = "firmware 11/0", .completion = -1});
//   Session session(machine.GetMachine());

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sim/kept_machine.h"

namespace mira::sim {

class ControlledMachine {
 public:
  // With a file, its state is kept there. Throws StateError when that cannot be read.
  ControlledMachine(std::string name, const Profile& profile, const std::filesystem::path& file);
  ~ControlledMachine();
  ControlledMachine(const ControlledMachine&) = delete;
  ControlledMachine& operator=(const ControlledMachine&) = delete;

  // What it was chosen by.
  const std::string& Name() const { return name_; }
  Machine& GetMachine() { return machine_; }
  // Empty: it lives with the process.
  std::filesystem::path File() const;
  // What the last call could not be kept for; empty for nothing.
  std::string Problem() const;

  // As FaultFile's.
  SharedFault AddFault(const Fault& fault);
  std::vector<SharedFault> ListFaults() const;
  std::size_t ClearFaults(std::optional<std::uint32_t> number);

  // What went by, the newest at the end.
  std::vector<Node> Journal();
  void ClearJournal();

 private:
  class Own;

  std::string name_;
  Machine machine_;
  std::unique_ptr<Own> own_;           // of one that lives with the process
  std::unique_ptr<KeptMachine> kept_;  // or of one that is kept
};

}  // namespace mira::sim

#endif  // MIRA_SIM_CONTROLLED_MACHINE_H_
