#ifndef MIRA_SIM_CONTROL_H_
#define MIRA_SIM_CONTROL_H_

// The requests of mira_sim_control(), for the DLLs that have it.
//
//   const auto live = [](ControlHost& dll) { return Control(R"({"command": "live"})", dll); };

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "sim/process_machine.h"

namespace mira::sim {

struct ControlAnswer {
  std::int32_t status = 0;  // of mira_sim.h
  std::string document;
};

// What differs between the DLLs.
class ControlHost {
 public:
  virtual ~ControlHost() = default;
  // Does `work` while nothing else happens on the machine. False, without doing it, when the host
  // is in the middle of a call.
  virtual bool WhileStill(const std::function<void()>& work) = 0;
  // The machine that the process works on, or will. Throws ChoiceError.
  virtual MachinePtr Machine() = 0;
  // Lets the library forget the machine. Throws ChoiceError, MIRA_SIM_BUSY, while somebody works
  // with it; with `force` only where it cannot be helped.
  virtual void LetGo(bool force) = 0;
};

// Throws nothing but std::bad_alloc.
ControlAnswer Control(std::string_view request, ControlHost& host);

// The same for a C function: the document stays until the same thread asks again.
std::int32_t ControlForHost(const char* request, std::uint32_t size, const char** document,
                            std::uint32_t* document_size, ControlHost& host) noexcept;

}  // namespace mira::sim

#endif  // MIRA_SIM_CONTROL_H_
