#include "client/c/machine.h"
#include "client/error.h"

namespace mira::client::c {

std::unique_ptr<Machine> OpenMachine(const Json& options) {
  if (options.contains("simulated")) {
    throw Error(kNotSupported, "no-simulator",
                "This library works on this PC; simulated machines are opened by the simulator's "
                "build of it.",
                "simulated");
  }
  return std::make_unique<Machine>();
}

}  // namespace mira::client::c
