#include "sim/faults.h"

#include <thread>
#include <utility>

namespace mira::sim {

void Faults::Add(Fault fault) { armed_.push_back({std::move(fault)}); }

void Faults::Clear() { armed_.clear(); }

int Faults::Calls(std::string_view operation) const {
  const auto found = calls_.find(operation);
  return found != calls_.end() ? found->second : 0;
}

std::vector<const Fault*> Faults::Hit(std::string_view operation) {
  const auto counted = calls_.find(operation);
  if (counted != calls_.end()) {
    ++counted->second;
  } else {
    calls_.emplace(operation, 1);
  }
  std::vector<const Fault*> hit;
  for (Armed& armed : armed_) {
    if (armed.fault.operation != operation) continue;
    ++armed.calls;
    if (armed.fault.nth != 0 && armed.fault.nth != armed.calls) continue;
    if (armed.fault.delay.count() > 0) std::this_thread::sleep_for(armed.fault.delay);
    hit.push_back(&armed.fault);
  }
  return hit;
}

std::optional<std::int32_t> Faults::Fails(std::string_view operation) {
  for (const Fault* fault : Hit(operation)) {
    if (fault->result) return fault->result;
  }
  return std::nullopt;
}

}  // namespace mira::sim
