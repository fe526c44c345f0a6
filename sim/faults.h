#ifndef MIRA_SIM_FAULTS_H_
#define MIRA_SIM_FAULTS_H_

// Faults that the simulated machine injects on demand: a service that fails at its n-th call, a
// completion code of the firmware's, a corrupted reply, a call that takes its time.
//
//   machine.GetFaults().Add({.operation = "CoInitializeEx", .nth = 2, .result = E_FAIL});
//   machine.GetFaults().Add({.operation = "firmware 11/0", .completion = -1});

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mira::sim {

struct Fault {
  // A service of platform::ServiceTable under its own name ("CoInitializeEx"), a method of an
  // object
  // ("IWbemClassObject::Put"), or a firmware call: "firmware", or "firmware CLASS/SELECT" in
  // decimal.
  std::string operation;
  // Which call fails, counted from 1 from the moment the fault is added; 0: every call.
  int nth = 1;
  // What a failing service returns: an HRESULT, or for services that return something else that
  // value. Services that hand out memory give null, whatever stands here.
  std::optional<std::int32_t> result = std::nullopt;
  // For firmware calls: answers this completion code (cbRES1) without executing the command.
  std::optional<std::int32_t> completion = std::nullopt;
  // For firmware calls: changes the bytes of the reply; the span is the whole transfer array.
  std::function<void(std::vector<std::uint8_t>& reply)> corrupt = nullptr;
  // How long the call takes.
  std::chrono::milliseconds delay{0};
};

class Faults {
 public:
  // Throws std::invalid_argument for an operation that does not exist.
  void Add(Fault fault);
  // All of them, but for the firmware calls of single commands.
  static std::span<const std::string_view> Operations();
  void Clear();
  // Called with the name of every operation that is called; null: nobody is.
  void OnCall(std::function<void(std::string_view operation)> observer) {
    on_call_ = std::move(observer);
  }
  // How often an operation was called since the machine was made.
  int Calls(std::string_view operation) const;

  // Counts a call of the operation and gives the faults that it hits, after their delays.
  std::vector<const Fault*> Hit(std::string_view operation);
  // The same for operations that only fail: the value to return, if any.
  std::optional<std::int32_t> Fails(std::string_view operation);

 private:
  struct Armed {
    Fault fault;
    int calls = 0;
  };
  std::vector<Armed> armed_;
  std::map<std::string, int, std::less<>> calls_;
  std::function<void(std::string_view)> on_call_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FAULTS_H_
