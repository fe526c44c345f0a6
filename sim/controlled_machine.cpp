#include "sim/controlled_machine.h"

#include <deque>

namespace mira::sim {

// Faults and journal in memory.
class ControlledMachine::Own : public Storage, public FaultSource {
 public:
  void Transact(const std::function<void()>& work) override { work(); }
  void Note(const JournalEntry& entry) override { Note(ToNode(entry)); }
  void Note(const OperationEntry& entry) override { Note(ToNode(entry)); }
  std::vector<Fault> Hit(std::string_view operation) override {
    bool counted = false;
    return HitOf(faults, operation, counted);
  }

  std::vector<SharedFault> faults;
  std::deque<Node> journal;

 private:
  void Note(Node entry) {
    constexpr std::size_t kMost = 100000;
    if (journal.size() == kMost) journal.pop_front();
    journal.push_back(std::move(entry));
  }
};

ControlledMachine::ControlledMachine(std::string name, const Profile& profile,
                                     const std::filesystem::path& file)
    : name_(std::move(name)), machine_(profile) {
  if (!file.empty()) {
    kept_ = std::make_unique<KeptMachine>(machine_, file);
    return;
  }
  own_ = std::make_unique<Own>();
  machine_.SetStorage(own_.get());
  machine_.GetFaults().SetSource(own_.get());
}

// COM objects that a host has kept hold the machine's state longer.
ControlledMachine::~ControlledMachine() {
  if (!own_) return;
  machine_.GetFaults().SetSource(nullptr);
  machine_.SetStorage(nullptr);
}

std::filesystem::path ControlledMachine::File() const {
  return kept_ ? kept_->File() : std::filesystem::path();
}

std::string ControlledMachine::Problem() const { return kept_ ? kept_->Problem() : std::string(); }

SharedFault ControlledMachine::AddFault(const Fault& fault) {
  if (kept_) return kept_->GetFaults().Add(fault);
  Faults::Check(fault);
  return AddTo(own_->faults, fault);
}

std::vector<SharedFault> ControlledMachine::ListFaults() const {
  return kept_ ? kept_->GetFaults().List() : own_->faults;
}

std::size_t ControlledMachine::ClearFaults(std::optional<std::uint32_t> number) {
  if (kept_) return kept_->GetFaults().Clear(number);
  return std::erase_if(own_->faults, [&number](const SharedFault& shared) {
    return !number || shared.number == *number;
  });
}

std::vector<Node> ControlledMachine::Journal() {
  if (kept_) return kept_->Journal();
  return {own_->journal.begin(), own_->journal.end()};
}

void ControlledMachine::ClearJournal() {
  if (kept_) return kept_->ClearJournal();
  own_->journal.clear();
}

}  // namespace mira::sim
