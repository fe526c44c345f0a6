#include "sim/firmware/passwords.h"

#include <algorithm>
#include <string>

namespace mira::sim {
namespace {

// Function-specific completion codes.
constexpr std::int32_t kWrongPassword = 2;
constexpr std::int32_t kCriteriaNotMet = 3;
constexpr std::int32_t kNoSuchDrive = 1;
constexpr std::int32_t kWrongDrivePassword = 3;
constexpr std::int32_t kWrongAdminPassword = 4;
constexpr std::int32_t kMalformedDrivePassword = 5;
constexpr std::int32_t kDriveNotPresent = 7;

constexpr std::size_t kLongestDrivePassword = 32;
constexpr std::uint16_t kAdminClass = 9;

// The text in a field that begins at an offset of the record and is ended by a NUL or the field's
// end.
std::optional<std::string> FieldText(const Call& call, std::size_t offset, std::size_t size) {
  bytes::Reader in(call.Record(), offset);
  const std::string_view text = in.FixedText(std::min(size, in.Left()));
  if (!in.Ok()) return std::nullopt;
  return std::string(text);
}

}  // namespace

void PasswordHandler::Handle(Call& call) {
  StoredPassword& password = security_->ForClass(call.Class());
  switch (call.Select()) {
    case 3:
      return call.SetResult(2, password.Status(security_->UsesScanCodes()));
    case 4:
      return Verify(call, password);
    case 5:
      return Change(call, password);
    default:
      return call.Complete(kNotSupported);
  }
}

void PasswordHandler::Verify(Call& call, StoredPassword& password) {
  const auto text =
      call.IsOffset(1) ? FieldText(call, call.Arg(1), password.FieldSize()) : std::nullopt;
  if (!text) return call.Complete(kBadFormat);
  if (!password.IsInstalled()) return call.Complete(kError);
  switch (password.Verify(*text)) {
    case StoredPassword::Check::kRight:
      return call.HandOutKey(security_->IssueKey());
    case StoredPassword::Check::kWrong:
      return call.Complete(kWrongPassword);
    case StoredPassword::Check::kLocked:
      return call.Complete(kError);
  }
}

void PasswordHandler::Change(Call& call, StoredPassword& password) {
  const std::size_t field = password.FieldSize();
  const auto old_text = call.IsOffset(1) ? FieldText(call, call.Arg(1), field) : std::nullopt;
  const auto new_text =
      call.IsOffset(1) ? FieldText(call, call.Arg(1) + field, field) : std::nullopt;
  if (!old_text || !new_text) return call.Complete(kBadFormat);
  if (password.IsInstalled()) {
    const StoredPassword::Check check = password.Verify(*old_text);
    if (check == StoredPassword::Check::kLocked) return call.Complete(kError);
    if (check == StoredPassword::Check::kWrong) return call.Complete(kWrongPassword);
  }
  if (!password.Allows(*new_text)) return call.Complete(kCriteriaNotMet);
  password.Set(*new_text);
}

void SystemPasswordHandler::Handle(Call& call) {
  switch (call.Select()) {
    case 11:
    case 28:
      return ListDrives(call);
    case 12:
      return call.SetResult(2, security().ForClass(kAdminClass).IsInstalled() ? 1 : 0);
    case 13:
    case 30:
      return VerifyDrive(call);
    case 14:
    case 31:
      return ChangeDrive(call);
    default:
      return PasswordHandler::Handle(call);
  }
}

void SystemPasswordHandler::ListDrives(Call& call) const {
  std::vector<std::uint8_t> list;
  for (const Drive& drive : drives_) {
    list.push_back(drive.handle);
    list.insert(list.end(), drive.description.begin(), drive.description.end());
    list.push_back(0);
  }
  if (call.AnswerData(list)) call.SetResult(2, static_cast<std::uint32_t>(drives_.size()));
}

Drive* SystemPasswordHandler::FindDrive(Call& call, unsigned admin) {
  const auto drive = std::find_if(drives_.begin(), drives_.end(),
                                  [&](const Drive& d) { return d.handle == call.Arg(1); });
  if (drive == drives_.end()) {
    call.Complete(kNoSuchDrive);
    return nullptr;
  }
  if (!drive->present) {
    call.Complete(kDriveNotPresent);
    return nullptr;
  }
  StoredPassword& setup = security().ForClass(kAdminClass);
  if (setup.IsInstalled() &&
      setup.Verify(call.Text(admin).value_or("")) != StoredPassword::Check::kRight) {
    call.Complete(kWrongAdminPassword);
    return nullptr;
  }
  return &*drive;
}

void SystemPasswordHandler::VerifyDrive(Call& call) {
  const auto text = call.Text(2);
  if (!text) return call.Complete(kBadFormat);
  const Drive* const drive = FindDrive(call, 3);
  if (drive != nullptr && *text != drive->password) call.Complete(kWrongDrivePassword);
}

void SystemPasswordHandler::ChangeDrive(Call& call) {
  const auto current = call.Text(2);
  const auto changed = call.Text(3);
  if (!current || !changed) return call.Complete(kBadFormat);
  Drive* const drive = FindDrive(call, 4);
  if (drive == nullptr) return;
  if (*current != drive->password) return call.Complete(kWrongDrivePassword);
  if (changed->size() > kLongestDrivePassword) return call.Complete(kMalformedDrivePassword);
  drive->password = *changed;
}

}  // namespace mira::sim
