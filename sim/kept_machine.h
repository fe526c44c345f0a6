#ifndef MIRA_SIM_KEPT_MACHINE_H_
#define MIRA_SIM_KEPT_MACHINE_H_

// A simulated machine whose state lies in a file that several programs share. Every call and every
// restart is a transaction: lock, take over what another program has changed, execute, write,
// unlock. A program that ends at any moment leaves the state from before or after its last call.
//
//   Machine machine;
//   KeptMachine kept(machine, "laptop.machine");
//   Session session(machine);

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "sim/fault_file.h"
#include "sim/journal_file.h"
#include "sim/machine.h"

namespace mira::sim {

class KeptMachine : private Storage {
 public:
  // Brings the machine into the state of the file, if there is one; `machine` must outlive this.
  // Throws StateError when the file cannot be read, or holds another machine's state.
  KeptMachine(Machine& machine, std::filesystem::path file);
  ~KeptMachine() override;
  KeptMachine(const KeptMachine&) = delete;
  KeptMachine& operator=(const KeptMachine&) = delete;

  const std::filesystem::path& File() const { return file_; }
  // Does the work on the machine as one transaction. Throws StateError, and what `work` throws;
  // the machine is then as before.
  void Transact(const std::function<void()>& work) override;
  // The last transaction's failure in a sentence, also that of the faults' file; empty after one
  // that succeeded. A call that could not be kept has failed for its caller, too, as a call that
  // never came through.
  const std::string& Problem() const { return problem_.empty() ? faults_.Problem() : problem_; }

  // The faults that are kept beside the machine, and what went by on it, in all programs.
  FaultFile& GetFaults() { return faults_; }
  std::vector<Node> Journal();
  void ClearJournal();

  // Starts over with a new machine, without faults and with an empty journal, for all programs.
  static void Reset(const std::filesystem::path& file);
  // Whether there is something that Reset would remove.
  static bool IsThere(const std::filesystem::path& file);

 private:
  void Note(const JournalEntry& entry) override { journal_.Note(entry); }
  void Note(const OperationEntry& entry) override;
  // Never throws: what cannot be written of a journal is lost.
  void FlushJournal();
  void Refresh();
  void Write(const Node& state);

  Machine& machine_;
  std::filesystem::path file_;
  FaultFile faults_;
  JournalFile journal_;
  std::string stamp_;  // of the file's content that the machine has
  Node first_;         // the state of the new machine
  Node last_;          // and the one that the file holds
  std::string problem_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_KEPT_MACHINE_H_
