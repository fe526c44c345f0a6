#ifndef MIRA_CLIENT_C_MACHINE_H_
#define MIRA_CLIENT_C_MACHINE_H_

// The machine below the library that the C interface opens. Which ones there are is decided when
// the DLL is linked: the product has this PC (real_machine.cpp), the simulator's build has
// simulated machines beside it.

#include <memory>

#include "client/json.h"
#include "client/session.h"

namespace mira::client::c {

class Machine {
 public:
  virtual ~Machine() = default;
  // Tells the session what it works with.
  virtual void Introduce(Session&) const {}
  // Called after every request. Throws Error when what it did could not be kept.
  virtual void Check() const {}
};

// Puts the machine in force for the process until it ends. `options` is an object with "simulated"
// and "state", both of which may be missing. Throws Error. Called on the thread that makes all
// calls.
std::unique_ptr<Machine> OpenMachine(const Json& options);

}  // namespace mira::client::c

#endif  // MIRA_CLIENT_C_MACHINE_H_
