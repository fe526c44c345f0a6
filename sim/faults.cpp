#include "sim/faults.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <utility>

#include "bytes/text.h"

namespace mira::sim {
namespace {

constexpr std::string_view kOperations[] = {
    "AllocateAndInitializeSid",
    "CheckTokenMembership",
    "CoCreateInstance",
    "CoInitializeEx",
    "CoInitializeSecurity",
    "CoSetProxyBlanket",
    "CoUninitialize",
    "FormatMessageA",
    "GetLastError",
    "GetSystemFirmwareTable",
    "IEnumWbemClassObject::Next",
    "IUnknown::QueryInterface",
    "IWbemClassObject::Get",
    "IWbemClassObject::GetMethod",
    "IWbemClassObject::Put",
    "IWbemClassObject::SpawnInstance",
    "IWbemLocator::ConnectServer",
    "IWbemServices::CreateInstanceEnum",
    "IWbemServices::ExecMethod",
    "IWbemServices::GetObject",
    "LocalFree",
    "SafeArrayAccessData",
    "SafeArrayCreate",
    "SafeArrayDestroy",
    "SafeArrayGetDim",
    "SafeArrayGetLBound",
    "SafeArrayGetUBound",
    "SafeArrayPutElement",
    "SafeArrayUnaccessData",
    "SysAllocStringLen",
    "SysFreeString",
    "SysStringLen",
    "VariantClear",
    "firmware",
};

bool IsNumber(std::string_view text) { return bytes::ParseDigits(text, 10).has_value(); }

bool IsKnown(std::string_view operation) {
  if (std::find(std::begin(kOperations), std::end(kOperations), operation) !=
      std::end(kOperations)) {
    return true;
  }
  constexpr std::string_view kFirmware = "firmware ";
  if (operation.substr(0, kFirmware.size()) != kFirmware) return false;
  const std::string_view command = operation.substr(kFirmware.size());
  const std::size_t slash = command.find('/');
  return slash != std::string_view::npos && IsNumber(command.substr(0, slash)) &&
         IsNumber(command.substr(slash + 1));
}

}  // namespace

void Faults::Add(Fault fault) {
  if (!IsKnown(fault.operation)) {
    throw std::invalid_argument("no such operation: " + fault.operation);
  }
  armed_.push_back({std::move(fault)});
}

std::span<const std::string_view> Faults::Operations() { return kOperations; }

void Faults::Clear() { armed_.clear(); }

int Faults::Calls(std::string_view operation) const {
  const auto found = calls_.find(operation);
  return found != calls_.end() ? found->second : 0;
}

std::vector<const Fault*> Faults::Hit(std::string_view operation) {
  if (on_call_) on_call_(operation);
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
