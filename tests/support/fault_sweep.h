#ifndef MIRA_TESTS_SUPPORT_FAULT_SWEEP_H_
#define MIRA_TESTS_SUPPORT_FAULT_SWEEP_H_

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "sim/machine.h"

namespace mira::test {

// One call of a service that fails.
struct SingleFault {
  std::string operation;
  int nth;              // of the operation's calls in the work
  std::int32_t result;  // 0 where the service succeeds with an HRESULT, but gives nothing
};

// Lets each service that some work calls fail once, at each of its calls and with each error that
// it can give. Of equal calls in a row the first, the second and the last fail. Services that only
// give something back are left out: they have no failure that a caller could make good.
//
//   FaultSweep sweep(machine, [] { Work(); });
//   sweep.ForEach([](const SingleFault& fault) { Work(); Check(fault); });
class FaultSweep {
 public:
  // Does the work once, without a fault, to see what it calls.
  FaultSweep(sim::Machine& machine, const std::function<void()>& work);
  // Calls `test` for each fault; the machine forgets the fault afterwards.
  void ForEach(const std::function<void(const SingleFault&)>& test) const;
  std::size_t Size() const { return faults_.size(); }

 private:
  sim::Machine& machine_;
  std::vector<SingleFault> faults_;
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_FAULT_SWEEP_H_
