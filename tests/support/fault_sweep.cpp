#include "tests/support/fault_sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string_view>

namespace mira::test {
namespace {

constexpr std::int32_t Code(std::uint32_t hresult) { return static_cast<std::int32_t>(hresult); }

constexpr std::int32_t kOutOfMemory = Code(0x8007000E);
constexpr std::int32_t kAccessDenied = Code(0x80070005);
constexpr std::int32_t kWmiFailed = Code(0x80041001);
constexpr std::int32_t kWmiAccessDenied = Code(0x80041003);
constexpr std::int32_t kServerUnavailable = Code(0x800706BA);
constexpr std::int32_t kBadIndex = Code(0x8002000B);

struct Errors {
  std::string_view operation;
  std::vector<std::int32_t> results;
};

const std::vector<Errors>& AllErrors() {
  static const std::vector<Errors> errors = {
      {"AllocateAndInitializeSid", {8}},
      {"CheckTokenMembership", {5}},
      // Out of memory, the other kind of apartment, and initialised before by the host.
      {"CoInitializeEx", {kOutOfMemory, Code(0x80010106), 1}},
      {"CoInitializeSecurity", {kAccessDenied, Code(0x80010119)}},
      {"CoCreateInstance", {Code(0x80040154), 0}},
      {"CoSetProxyBlanket", {kAccessDenied}},
      {"GetSystemFirmwareTable", {0}},
      {"SysAllocStringLen", {0}},
      {"SafeArrayCreate", {0}},
      {"SafeArrayPutElement", {kBadIndex, kOutOfMemory}},
      {"SafeArrayAccessData", {Code(0x8000FFFF), 0}},
      {"SafeArrayGetDim", {0, 2}},
      {"SafeArrayGetLBound", {kBadIndex}},
      {"SafeArrayGetUBound", {kBadIndex, 0}},
      {"IUnknown::QueryInterface", {Code(0x80004002), 0}},
      {"IWbemLocator::ConnectServer", {kWmiAccessDenied, kServerUnavailable, 0}},
      {"IWbemServices::CreateInstanceEnum", {Code(0x80041010), 0}},
      {"IWbemServices::GetObject", {Code(0x80041002), 0}},
      {"IWbemServices::ExecMethod", {kWmiFailed, kServerUnavailable, 0}},
      // Failed, no more objects, too late, and success with nothing.
      {"IEnumWbemClassObject::Next", {kWmiFailed, 1, 0x40004, 0}},
      {"IWbemClassObject::Get", {Code(0x80041002), 0}},
      {"IWbemClassObject::GetMethod", {Code(0x80041002), 0}},
      {"IWbemClassObject::Put", {Code(0x80041005), kOutOfMemory, 0}},
      {"IWbemClassObject::SpawnInstance", {kOutOfMemory, 0}},
  };
  return errors;
}

const std::vector<std::int32_t>& ErrorsOf(std::string_view operation) {
  static const std::vector<std::int32_t> none;
  const std::vector<Errors>& all = AllErrors();
  const auto found = std::find_if(all.begin(), all.end(), [operation](const Errors& errors) {
    return errors.operation == operation;
  });
  return found != all.end() ? found->results : none;
}

}  // namespace

FaultSweep::FaultSweep(sim::Machine& machine, const std::function<void()>& work)
    : machine_(machine) {
  std::vector<std::string> calls;
  machine.GetFaults().OnCall(
      [&calls](std::string_view operation) { calls.emplace_back(operation); });
  work();
  machine.GetFaults().OnCall(nullptr);

  std::map<std::string, int> counts;
  for (std::size_t i = 0, row = 0; i < calls.size(); ++i) {
    if (calls[i] != calls[row]) row = i;
    const int nth = ++counts[calls[i]];
    const bool is_last = i + 1 == calls.size() || calls[i + 1] != calls[i];
    if (i > row + 1 && !is_last) continue;
    for (const std::int32_t result : ErrorsOf(calls[i])) faults_.push_back({calls[i], nth, result});
  }
}

void FaultSweep::ForEach(const std::function<void(const SingleFault&)>& test) const {
  for (const SingleFault& fault : faults_) {
    SCOPED_TRACE(fault.operation + " " + std::to_string(fault.nth) + " gives " +
                 std::to_string(fault.result));
    machine_.GetFaults().Add(
        {.operation = fault.operation, .nth = fault.nth, .result = fault.result});
    test(fault);
    machine_.GetFaults().Clear();
  }
}

}  // namespace mira::test
