#include "sim/fault_file.h"

#include <algorithm>
#include <iterator>
#include <system_error>

#include "sim/kept_file.h"
#include "support/files.h"

namespace mira::sim {
namespace {

constexpr std::uint32_t kFaultVersion = 1;
constexpr std::size_t kLargestFaultFile = 1024 * 1024;
constexpr std::size_t kMostFaults = 1000;

void DescribeFile(Fields& fields, std::vector<SharedFault>& faults) {
  fields.Whole([&] {
    std::uint32_t version = kFaultVersion;
    fields("schemaVersion", version)("faults", faults);
    fields.Require(version == kFaultVersion, "this program does not know the version");
  });
}

// Memory services are called so often that looking for the file each time would show.
bool IsFrequent(std::string_view operation) {
  constexpr std::string_view kBeginnings[] = {"Sys", "SafeArray", "Variant"};
  return std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                     [&](std::string_view begin) { return operation.starts_with(begin); });
}

}  // namespace

void Describe(Fields& fields, SharedFault& shared) {
  Fault& fault = shared.fault;
  fields("number", shared.number)("operation", fault.operation)("nth", fault.nth);
  fields("calls", shared.calls)("hits", shared.hits)("completion", fault.completion);
  std::optional<std::uint32_t> hresult;
  if (fault.result) hresult = static_cast<std::uint32_t>(*fault.result);
  std::uint32_t delay = static_cast<std::uint32_t>(fault.delay.count());
  fields("hresult", hresult)("delayMs", delay)("truncate", fault.truncate);
  fields("overwriteAt", fault.overwrite_at)("overwrite", fault.overwrite);
  fields.Choice("loses", fault.loss, {"nothing", "connection", "power"});
  fields.Choice("moment", fault.moment, {"before", "within", "after"});
  fault.delay = std::chrono::milliseconds(delay);
  if (hresult) fault.result = static_cast<std::int32_t>(*hresult);
  if (!fields.IsLoading()) return;
  try {
    Faults::Check(fault);
  } catch (const std::invalid_argument& error) {
    fields.Require(false, error.what());
  }
}

SharedFault AddTo(std::vector<SharedFault>& faults, const Fault& fault) {
  if (faults.size() >= kMostFaults) throw StateError("there are too many faults already");
  SharedFault added;
  added.number = faults.empty() ? 1 : faults.back().number + 1;
  added.fault = fault;
  faults.push_back(added);
  return added;
}

std::vector<Fault> HitOf(std::vector<SharedFault>& faults, std::string_view operation,
                         bool& counted) {
  std::vector<Fault> hit;
  counted = false;
  for (SharedFault& shared : faults) {
    if (shared.fault.operation != operation) continue;
    counted = true;
    ++shared.calls;
    if (shared.fault.nth != 0 && shared.fault.nth != shared.calls) continue;
    ++shared.hits;
    hit.push_back(shared.fault);
  }
  return hit;
}

bool FaultFile::IsThere() const {
  std::error_code error;
  // Where nobody can tell, reading it says what is wrong.
  return std::filesystem::exists(file_, error) || error;
}

std::vector<SharedFault> FaultFile::Read() const {
  std::vector<SharedFault> faults;
  const bytes::SecureString text = ReadKeptFile(file_, kLargestFaultFile);
  if (text.empty()) {
    if (IsThere()) throw StateError("the file is empty");
    return faults;
  }
  Node root = ParseJson(text.str());
  Fields fields(Fields::Pass::kLoad, root);
  DescribeFile(fields, faults);
  return faults;
}

void FaultFile::Write(std::vector<SharedFault>& faults) const {
  Node root;
  Fields fields(Fields::Pass::kSave, root);
  DescribeFile(fields, faults);
  if (const std::error_code error =
          support::WriteFileSafely(file_, WriteJson(root).str(), support::FileAccess::kPrivate)) {
    throw StateError("the faults cannot be written: " + error.message());
  }
}

SharedFault FaultFile::Add(const Fault& fault) {
  Faults::Check(fault);
  const FileLock lock(file_);
  RemoveRemains(file_);
  std::vector<SharedFault> faults = Read();
  const SharedFault added = AddTo(faults, fault);
  Write(faults);
  return added;
}

std::vector<SharedFault> FaultFile::List() const {
  if (!IsThere()) return {};
  const FileLock lock(file_);
  return Read();
}

std::size_t FaultFile::Clear(std::optional<std::uint32_t> number) {
  if (!IsThere()) return 0;
  const FileLock lock(file_);
  RemoveRemains(file_);
  std::vector<SharedFault> faults;
  std::size_t cleared = 1;  // all of a file that cannot be read
  try {
    faults = Read();
    cleared = std::erase_if(
        faults, [&](const SharedFault& shared) { return !number || shared.number == *number; });
  } catch (const StateError&) {
    if (number) throw;
  }
  if (!faults.empty()) {
    if (cleared > 0) Write(faults);
    return cleared;
  }
  std::error_code error;
  std::filesystem::remove(file_, error);
  if (error) throw StateError("the faults cannot be removed: " + error.message());
  return cleared;
}

std::vector<Fault> FaultFile::Hit(std::string_view operation) {
  if (!IsFrequent(operation)) was_there_ = IsThere();
  if (!was_there_) return {};
  try {
    const FileLock lock(file_);
    std::vector<SharedFault> faults = Read();
    bool is_counted = false;
    std::vector<Fault> hit = HitOf(faults, operation, is_counted);
    if (is_counted) Write(faults);
    return hit;
  } catch (const std::exception& error) {
    problem_ = "its faults cannot be used: " + std::string(error.what());
  }
  // Nobody knows what would have become of the call.
  const bool is_firmware = operation.starts_with("firmware");
  if (!is_firmware && !NeedsConnection(operation)) return {};
  return {{.operation = std::string(operation), .loss = Loss::kConnection}};
}

}  // namespace mira::sim
