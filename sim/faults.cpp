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

bool NeedsConnection(std::string_view operation) {
  return operation.starts_with("IWbemServices::") ||
         operation.starts_with("IEnumWbemClassObject::");
}

void Faults::Check(const Fault& fault) {
  const auto require = [](bool is_sound, const std::string& rule) {
    if (!is_sound) throw std::invalid_argument(rule);
  };
  require(IsKnown(fault.operation), "no such operation: " + fault.operation);
  require(fault.nth >= 0, "calls are counted from 1");
  const bool is_firmware = fault.operation.starts_with("firmware");
  const bool is_reply = fault.completion || fault.truncate || !fault.overwrite.empty();
  require(is_firmware || !is_reply, "only firmware calls have a reply");
  require(is_firmware || fault.loss != Loss::kPower, "power is only lost in firmware calls");
  require(is_firmware || fault.loss == Loss::kNothing || NeedsConnection(fault.operation),
          "the operation needs no connection that could be lost");
  require(is_firmware || fault.moment == Moment::kBefore, "only firmware calls have moments");
  require(fault.moment != Moment::kWithin || fault.loss == Loss::kPower,
          "only power is lost within a write");
}

bool Faults::DoesSomething(const Fault& fault) {
  return fault.completion || fault.result || fault.delay.count() > 0 || fault.truncate ||
         !fault.overwrite.empty() || fault.loss != Loss::kNothing || fault.corrupt;
}

std::string Faults::NameOf(const std::string& operation) {
  const bool is_command = IsNumber(operation.substr(0, 1));
  return is_command ? "firmware " + operation : operation;
}

void Faults::Add(Fault fault) {
  Check(fault);
  armed_.push_back({std::move(fault)});
}

std::span<const std::string_view> Faults::Operations() { return kOperations; }

void Faults::Clear() { armed_.clear(); }

int Faults::Calls(std::string_view operation) const {
  const auto found = calls_.find(operation);
  return found != calls_.end() ? found->second : 0;
}

std::vector<Fault> Faults::Hit(std::string_view operation) {
  if (on_call_) on_call_(operation);
  const auto counted = calls_.find(operation);
  if (counted != calls_.end()) {
    ++counted->second;
  } else {
    calls_.emplace(operation, 1);
  }
  std::vector<Fault> hit;
  for (Armed& armed : armed_) {
    if (armed.fault.operation != operation) continue;
    ++armed.calls;
    if (armed.fault.nth == 0 || armed.fault.nth == armed.calls) hit.push_back(armed.fault);
  }
  if (source_ != nullptr) {
    std::vector<Fault> more = source_->Hit(operation);
    std::move(more.begin(), more.end(), std::back_inserter(hit));
  }
  for (const Fault& fault : hit) {
    if (fault.delay.count() > 0) std::this_thread::sleep_for(fault.delay);
  }
  return hit;
}

std::optional<std::int32_t> Faults::Fails(std::string_view operation) {
  for (const Fault& fault : Hit(operation)) {
    if (fault.loss == Loss::kConnection) {
      Cut();
      return kConnectionLost;
    }
    if (fault.result) return fault.result;
  }
  return std::nullopt;
}

}  // namespace mira::sim
