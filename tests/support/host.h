#ifndef MIRA_TESTS_SUPPORT_HOST_H_
#define MIRA_TESTS_SUPPORT_HOST_H_

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "facade/mira_intf.h"
#include "sim/machine.h"

namespace mira::test {

// A host that has started on a simulated machine.
class Host {
 public:
  explicit Host(const sim::Profile& profile = sim::Profile(), bool load_attributes = false)
      : machine_(profile), session_(machine_), mira_(diagnostics_) {
    status_ = mira_.Init(load_attributes, load_attributes, load_attributes);
  }
  sim::Machine& machine() { return machine_; }
  CMiraIntf* operator->() { return &mira_; }
  Status init_status() const { return status_; }
  std::string diagnostics() const { return diagnostics_.str(); }
  // The firmware calls since `first`, as (class, select) pairs.
  std::vector<std::pair<int, int>> Calls(std::size_t first = 0) const {
    std::vector<std::pair<int, int>> calls;
    const auto& journal = machine_.Journal();
    for (std::size_t i = first; i < journal.size(); ++i) {
      calls.emplace_back(journal[i].cls, journal[i].select);
    }
    return calls;
  }

 private:
  sim::Machine machine_;
  sim::Session session_;
  std::ostringstream diagnostics_;
  CMiraIntf mira_;
  Status status_;
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_HOST_H_
