#ifndef MIRA_SIM_FIRMWARE_FIRMWARE_H_
#define MIRA_SIM_FIRMWARE_FIRMWARE_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "sim/faults.h"
#include "sim/firmware/handler.h"
#include "sim/firmware/security.h"
#include "sim/journal.h"
#include "sim/profile.h"
#include "sim/state_document.h"

namespace mira::sim {

// The firmware behind the WMI method: takes the transfer array, lets the handler of the command's
// class answer, and keeps the journal.
class Firmware {
 public:
  explicit Firmware(const Profile& profile);
  ~Firmware();
  Firmware(const Firmware&) = delete;
  Firmware& operator=(const Firmware&) = delete;

  // Executes the call in `array` and leaves the answer there. Gives the HRESULT of a call that
  // fails on its way, or whose answer does.
  std::optional<std::int32_t> Execute(std::vector<std::uint8_t>& array, Faults& faults);
  // Puts a handler in charge of a class (0 to 64).
  void SetHandler(std::uint16_t cls, std::unique_ptr<CommandHandler> handler);
  // After a loss of power in a call the machine is off, and this starts it again.
  void Reboot();
  bool IsOff() const { return is_off_; }
  // The same after a loss of power: what was to be written with the restart is lost.
  void PowerLoss();
  // Declares the state of all handlers. The journal is no part of it.
  void Keep(Fields& fields);

  const std::vector<JournalEntry>& Journal() const { return journal_; }
  void ClearJournal() { journal_.clear(); }
  // How often the machine has started.
  int BootCount() const { return boot_count_; }

 private:
  static constexpr std::size_t kClasses = 65;

  std::int32_t Dispatch(Call& call);
  void Answer(Call& call, const std::vector<Fault>& hit);
  // Dispatches the call; power is lost in the middle of what it writes.
  void DispatchTorn(Call& call);
  void Note(const Call& call, JournalEntry& entry);
  Node Tree();
  void TakeTree(Node tree);
  void Restart(Fields::Pass pass);

  std::uint32_t supported_classes_;
  std::shared_ptr<Security> security_;
  std::array<std::unique_ptr<CommandHandler>, kClasses> handlers_;
  std::vector<std::uint32_t> issued_keys_;
  std::vector<JournalEntry> journal_;
  int boot_count_ = 1;
  bool is_off_ = false;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_FIRMWARE_H_
