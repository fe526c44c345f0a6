#ifndef MIRA_SIM_MACHINE_H_
#define MIRA_SIM_MACHINE_H_

// A simulated PC below the library's transport: firmware table, WMI objects, firmware, user rights.
// Everything a host does with the library it can do here, without the hardware.
//
//   mira::sim::Machine machine;                 // the laptop
//   mira::sim::Session session(machine);        // the process now runs on it
//   CMiraIntf mira(std::cerr);
//   mira.Init(false, false, false);             // succeeds

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "platform/services.h"
#include "sim/faults.h"
#include "sim/journal.h"
#include "sim/profile.h"
#include "sim/state.h"
#include "sim/state_document.h"

namespace mira::sim {

class Machine {
 public:
  explicit Machine(const Profile& profile = Profile());

  const Profile& GetProfile() const { return state_->profile; }
  Faults& GetFaults() { return state_->faults; }
  Firmware& GetFirmware() { return state_->firmware; }
  const Objections& GetObjections() const { return state_->objections; }
  // Called with the bytes of every array that is put into a WMI object.
  void OnPut(std::function<void(bytes::ByteSpan)> observer) {
    state_->on_put = std::move(observer);
  }
  // The firmware calls made so far, secrets masked.
  const std::vector<JournalEntry>& Journal() const { return state_->firmware.Journal(); }
  // What the machine handed out and has not got back.
  const Live& GetLive() const { return state_->live; }
  // Called with the bytes of every string and array just before the library releases them.
  void OnRelease(std::function<void(bytes::ByteSpan)> observer) {
    state_->on_release = std::move(observer);
  }
  // The calling thread's host has initialised COM by itself, where the machine does not see it.
  void HostEnters(Apartments::Kind kind) {
    if (!state_->apartments.HasEntered()) state_->apartments.Enter(kind);
  }
  // Restarts the machine: what was pending comes into force. A process that read the machine before
  // does not see it until it asks again.
  // Throws StateError when the machine is kept and that failed.
  void Reboot();
  // The same after a loss of power: what the firmware writes with an orderly restart is lost.
  void LosePower();

  // The machine's state as a JSON text, and the same state on a machine of the same profile. Throws
  // StateError, with nothing changed, for a text that is no such state. What was typed into the
  // machine stands in the text, passwords included, as in the memory of a real one.
  bytes::SecureString SaveState() const;
  void RestoreState(std::string_view saved);
  // The same through the storage of a machine that is kept.
  void LoadState(const Node& tree);
  // The same as a tree.
  Node StateTree() const;
  void TakeState(const Node& tree);
  // Null: the state ends with the machine. Otherwise all calls and restarts go through `storage`,
  // until null is set.
  void SetStorage(Storage* storage) { state_->storage = storage; }

 private:
  friend class Session;
  void Keep(Fields& fields) const;

  StatePtr state_;
};

// Puts a machine in force for the process, for a scope. At both ends the library forgets what it
// knew of a machine, so no object from CMiraIntf::GetBIOSObject may outlive the session; nor may a
// CMiraIntf. Sessions may be nested.
class Session {
 public:
  // With kGoesOn the library keeps what it has begun: for a session that starts within a call.
  enum class Start { kForgets, kGoesOn };
  explicit Session(Machine& machine, Start start = Start::kForgets);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

 private:
  StatePtr state_before_;
  const platform::ServiceTable* services_before_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_MACHINE_H_
