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
#include <vector>

#include "platform/services.h"
#include "sim/faults.h"
#include "sim/journal.h"
#include "sim/profile.h"
#include "sim/state.h"

namespace mira::sim {

class Machine {
 public:
  explicit Machine(const Profile& profile = Profile());

  const Profile& GetProfile() const { return state_->profile; }
  Faults& GetFaults() { return state_->faults; }
  Firmware& GetFirmware() { return state_->firmware; }
  // The firmware calls made so far, secrets masked.
  const std::vector<JournalEntry>& Journal() const { return state_->firmware.Journal(); }
  // What the machine handed out and has not got back.
  const Live& GetLive() const { return state_->live; }
  // Called with the bytes of every string and array just before the library releases them.
  void OnRelease(std::function<void(bytes::ByteSpan)> observer) {
    state_->on_release = std::move(observer);
  }
  // Restarts the machine: what was pending comes into force. A process that read the machine before
  // does not see it until it asks again.
  void Reboot() { state_->firmware.Reboot(); }

  // The machine's state as bytes, and the same state on a machine of the same profile that was just
  // made; false, with nothing changed, for bytes that are no such state. What was typed into the
  // machine stands in the bytes, passwords included, as in the memory of a real one.
  std::vector<std::uint8_t> SaveState() const;
  bool RestoreState(bytes::ByteSpan saved);
  // How often the machine was changed or restarted.
  std::size_t Changes() const { return state_->firmware.GetHistory().Events().size(); }

 private:
  friend class Session;
  StatePtr state_;
};

// Puts a machine in force for the process, for a scope. At both ends the library forgets what it
// knew of a machine, so no object from CMiraIntf::GetBIOSObject may outlive the session; nor may a
// CMiraIntf. Sessions may be nested.
class Session {
 public:
  explicit Session(Machine& machine);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

 private:
  StatePtr state_before_;
  const platform::ServiceTable* services_before_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_MACHINE_H_
