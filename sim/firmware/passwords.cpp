#include "sim/firmware/passwords.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace mira::sim {
namespace {

// Function-specific completion codes.
constexpr std::int32_t kWrongPassword = 2;
constexpr std::int32_t kCriteriaNotMet = 3;
constexpr std::int32_t kNoSuchDrive = 1;
constexpr std::int32_t kDriveUnavailable = 2;
constexpr std::int32_t kWrongDrivePassword = 3;
constexpr std::int32_t kWrongAdminPassword = 4;
constexpr std::int32_t kMalformedDrivePassword = 5;
constexpr std::int32_t kDrivePasswordStays = 6;
constexpr std::int32_t kDriveNotPresent = 7;
constexpr std::int32_t kNoMaximumSecurity = 8;

constexpr std::uint8_t kLongestDrivePassword = 32;
constexpr std::uint8_t kShortestDrivePassword = 1;
constexpr std::uint16_t kAdminClass = 9;

// The text in a field that begins at an offset of the record and is ended by a NUL or the field's
// end.
std::optional<std::string_view> FieldText(const Call& call, std::size_t offset, std::size_t size) {
  bytes::Reader in(call.Record(), offset);
  const std::string_view text = in.FixedText(std::min(size, in.Left()));
  if (!in.Ok()) return std::nullopt;
  return text;
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
      return call.HandOutKey(security_->Key(call.Class()));
    case StoredPassword::Check::kWrong:
      return call.Complete(kWrongPassword);
    case StoredPassword::Check::kLocked:
      return call.Complete(kError);
  }
}

void PasswordHandler::Change(Call& call, StoredPassword& password) {
  // Two fields of one size stand behind the fixed part of 44 bytes, and the last text's NUL behind
  // them.
  constexpr std::size_t kOverhead = 45;
  const std::size_t length = call.Record().size();
  const std::size_t field = length > kOverhead ? (length - kOverhead) / 2 : 0;
  const auto old_text = call.IsOffset(1) ? FieldText(call, call.Arg(1), field) : std::nullopt;
  const auto new_text =
      call.IsOffset(1) ? FieldText(call, call.Arg(1) + field, field + 1) : std::nullopt;
  if (!old_text || !new_text) return call.Complete(kBadFormat);
  if (password.IsInstalled()) {
    const StoredPassword::Check check = password.Verify(*old_text);
    if (check == StoredPassword::Check::kLocked) return call.Complete(kError);
    if (check == StoredPassword::Check::kWrong) return call.Complete(kWrongPassword);
  }
  if (!password.Allows(*new_text)) return call.Complete(kCriteriaNotMet);
  password.Set(*new_text);
}

SystemPasswordHandler::SystemPasswordHandler(std::shared_ptr<Security> security,
                                             const Profile& profile)
    : PasswordHandler(security), users_(std::move(security), profile.pre_boot) {
  for (const Drive& drive : profile.drives) {
    drives_.push_back({drive, StoredPassword({.text = drive.password,
                                              .max_length = kLongestDrivePassword,
                                              .min_length = kShortestDrivePassword},
                                             profile.wrong_passwords_until_locked)});
  }
}

void SystemPasswordHandler::Handle(Call& call) {
  switch (call.Select()) {
    case 11:
    case 28:
      return ListDrives(call);
    case 12:
      return TellWhetherAdminIsNeeded(call);
    case 13:
    case 30:
      return VerifyDrive(call);
    case 14:
    case 31:
      return ChangeDrive(call);
    default:
      if (!users_.Handle(call)) PasswordHandler::Handle(call);
  }
}

void SystemPasswordHandler::Reboot() {
  security().Reboot();
  users_.Reboot();
  for (StoredDrive& drive : drives_) drive.password.Reboot();
}

void SystemPasswordHandler::Keep(Fields& fields) {
  security().Keep(fields);
  users_.Keep(fields);
  fields.Group("drives", [&] {
    NumberNames name;
    for (StoredDrive& stored : drives_) fields(name(stored.drive.handle), stored.password);
  });
}

void SystemPasswordHandler::ListDrives(Call& call) const {
  std::vector<std::uint8_t> list;
  for (const StoredDrive& stored : drives_) {
    list.push_back(stored.drive.handle);
    list.insert(list.end(), stored.drive.description.begin(), stored.drive.description.end());
    list.push_back(0);
  }
  if (call.AnswerData(list)) call.SetResult(2, static_cast<std::uint32_t>(drives_.size()));
}

SystemPasswordHandler::StoredDrive* SystemPasswordHandler::FindDrive(Call& call) {
  const auto found = std::find_if(drives_.begin(), drives_.end(), [&](const StoredDrive& stored) {
    return stored.drive.handle == call.Arg(1);
  });
  const std::int32_t problem = found == drives_.end()  ? kNoSuchDrive
                               : !found->drive.present ? kDriveNotPresent
                               : !found->drive.answers ? kDriveUnavailable
                                                       : kSuccess;
  if (problem == kSuccess) return &*found;
  call.Complete(problem);
  return nullptr;
}

void SystemPasswordHandler::TellWhetherAdminIsNeeded(Call& call) {
  if (FindDrive(call) == nullptr) return;
  call.SetResult(2, security().ForClass(kAdminClass).IsInstalled() ? 1 : 0);
}

bool SystemPasswordHandler::IsAllowed(Call& call, unsigned admin, StoredDrive& drive,
                                      std::string_view current) {
  StoredPassword& setup = security().ForClass(kAdminClass);
  if (setup.IsInstalled() &&
      setup.Verify(call.Text(admin).value_or("")) != StoredPassword::Check::kRight) {
    call.Complete(kWrongAdminPassword);
    return false;
  }
  const StoredPassword::Check check = drive.password.Verify(current);
  if (check == StoredPassword::Check::kRight) return true;
  // A drive that was given too many wrong passwords closes itself until the next start.
  call.Complete(check == StoredPassword::Check::kLocked ? kDriveUnavailable : kWrongDrivePassword);
  return false;
}

void SystemPasswordHandler::VerifyDrive(Call& call) {
  const auto text = call.Text(2);
  if (!text) return call.Complete(kBadFormat);
  StoredDrive* const drive = FindDrive(call);
  if (drive != nullptr) IsAllowed(call, 3, *drive, *text);
}

void SystemPasswordHandler::ChangeDrive(Call& call) {
  constexpr std::uint32_t kMaximumSecurity = 1;
  const auto current = call.Text(2);
  const auto changed = call.Text(3);
  if (!current || !changed) return call.Complete(kBadFormat);
  StoredDrive* const drive = FindDrive(call);
  if (drive == nullptr || !IsAllowed(call, 4, *drive, *current)) return;
  if (!drive->password.Allows(*changed)) return call.Complete(kMalformedDrivePassword);
  if (changed->empty() && (!drive->password.IsInstalled() || !drive->drive.can_clear)) {
    return call.Complete(kDrivePasswordStays);
  }
  if (!call.IsOffset(4) && call.Arg(4) == kMaximumSecurity && !drive->drive.has_maximum_security) {
    return call.Complete(kNoMaximumSecurity);
  }
  drive->password.Set(*changed);
}

}  // namespace mira::sim
