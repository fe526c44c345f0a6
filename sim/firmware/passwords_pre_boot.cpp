#include "sim/firmware/passwords_pre_boot.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace mira::sim {
namespace {

// Function-specific completion codes; what they mean depends on the select.
constexpr std::int32_t kWrongConfigurationKey = 1;
constexpr std::int32_t kNobodyAuthenticated = 1;
constexpr std::int32_t kWrongPreBootPassword = 2;
constexpr std::int32_t kNoRoom = 2;
constexpr std::int32_t kNoSuchUser = 2;
constexpr std::int32_t kNotWithThisMethod = 2;
constexpr std::int32_t kWrongItemFormat = 2;
constexpr std::int32_t kNoPasswordSet = 3;
constexpr std::int32_t kFetchedBefore = 3;
constexpr std::int32_t kWrongItemKind = 3;
constexpr std::int32_t kWrongFunction = 4;
constexpr std::int32_t kWrongIdFormat = 4;
constexpr std::int32_t kNotThere = 4;
constexpr std::int32_t kWrongKeyFormat = 5;
constexpr std::int32_t kKeyIsTaken = 6;
constexpr std::int32_t kIdIsTaken = 7;
constexpr std::int32_t kNothingPermitted = 8;
constexpr std::int32_t kRequiresMoreThanPermitted = 9;

constexpr std::uint16_t kPasswordClass = 10;

template <typename Value>
std::optional<Value> FromText(std::string_view text) {
  Value value{};
  if (text.empty() || text.size() > value.size()) return std::nullopt;
  std::copy(text.begin(), text.end(), value.begin());
  return value;
}

// An item: a format byte (0 binary, 1 text with its NUL), then the value. Nothing for an
// unsupported format, or where the record ends within it.
template <typename Value>
std::optional<Value> ReadItem(bytes::Reader& in) {
  constexpr std::uint8_t kBinary = 0;
  constexpr std::uint8_t kText = 1;
  const std::uint8_t format = in.U8();
  const std::string_view text = format == kText ? in.CString() : std::string_view();
  Value value{};
  const auto binary = format == kBinary ? in.Take(value.size()) : bytes::ByteSpan();
  if (!in.Ok()) return std::nullopt;
  if (format == kText) return FromText<Value>(text);
  if (binary.empty()) return std::nullopt;
  std::copy(binary.begin(), binary.end(), value.begin());
  return value;
}

}  // namespace

PreBootUsers::PreBootUsers(std::shared_ptr<Security> security, const PreBoot& profile)
    : security_(std::move(security)), profile_(profile) {
  for (const PreBootUser& user : profile_.users) {
    users_.push_back({FromText<UserId>(user.id).value(), FromText<UserKey>(user.passphrase).value(),
                      user.permitted, user.required});
  }
  Reboot();
}

void PreBootUsers::Reboot() {
  fetched_.clear();
  authenticated_.reset();
  const auto id = FromText<UserId>(profile_.authenticates);
  for (const User& user : users_) {
    if (user.id == id && (user.permitted & profile_.method) != 0) authenticated_ = user;
  }
}

void PreBootUsers::User::Keep(Fields& fields) {
  // Filling zeros are no part of a passphrase.
  const std::string_view bytes = bytes::AsText(key);
  const std::size_t size = bytes.find_last_not_of('\0') + 1;
  bytes::SecureString passphrase(bytes.substr(0, size));
  fields("id", id)("passphrase", passphrase)("permitted", permitted)("required", required);
  if (!fields.IsLoading()) return;
  fields.Require(passphrase.size() <= key.size(), "a passphrase has 16 bytes at most");
  key = {};
  std::copy(passphrase.str().begin(), passphrase.str().end(), key.begin());
}

void PreBootUsers::Keep(Fields& fields) {
  fields.Group("preBoot", [&] {
    fields("users", users_)("authenticated", authenticated_)("fetched", fetched_);
    fields.Require(users_.size() <= profile_.capacity, "there are more users than places");
  });
}

bool PreBootUsers::Handle(Call& call) {
  switch (call.Select()) {
    case 7:
      Configure(call);
      return true;
    case 8:
      Add(call);
      return true;
    case 9:
      Delete(call);
      return true;
    case 15:
      TellAuthenticated(call);
      return true;
    case 16:
      HandOutCredential(call);
      return true;
    case 17:
      TellExistence(call);
      return true;
    case 18:
      LookUp(call);
      return true;
    default:
      return false;
  }
}

bool PreBootUsers::Opens(Call& call, std::uint32_t key) const {
  if (key == security_->Key(Security::kPreBootConfiguration)) return true;
  call.Complete(kWrongConfigurationKey);
  return false;
}

void PreBootUsers::Configure(Call& call) {
  constexpr std::uint32_t kStatus = 0;
  constexpr std::uint32_t kGetKey = 1;
  constexpr std::uint32_t kClear = 2;
  switch (call.Arg(1)) {
    case kStatus:
      call.SetResult(2, profile_.methods);
      call.SetResult(3, static_cast<std::uint32_t>(users_.size()));
      return call.SetResult(4, static_cast<std::uint32_t>(profile_.capacity));
    case kGetKey:
      return HandOutConfigurationKey(call);
    case kClear:
      if (Opens(call, call.Arg(2))) users_.clear();
      return;
    default:
      return call.Complete(kWrongFunction);
  }
}

void PreBootUsers::HandOutConfigurationKey(Call& call) {
  StoredPassword& password = security_->ForClass(kPasswordClass);
  const auto text = call.Text(2);
  if (!text) return call.Complete(kBadFormat);
  if (!password.IsInstalled()) return call.Complete(kNoPasswordSet);
  if (password.Verify(*text) != StoredPassword::Check::kRight) {
    return call.Complete(kWrongPreBootPassword);
  }
  call.HandOutKey(security_->Key(Security::kPreBootConfiguration));
}

void PreBootUsers::Add(Call& call) {
  if (!security_->ForClass(kPasswordClass).IsInstalled()) return call.Complete(kNoPasswordSet);
  if (!Opens(call, call.Arg(1))) return;
  bytes::Reader items(call.Record(), call.Arg(2));
  bytes::Reader bitmaps(call.Record(), call.Arg(3));
  const auto id = ReadItem<UserId>(items);
  if (!id) return call.Complete(items.Ok() ? kWrongIdFormat : kBadFormat);
  const auto key = ReadItem<UserKey>(items);
  if (!key) return call.Complete(items.Ok() ? kWrongKeyFormat : kBadFormat);
  const std::uint32_t permitted = bitmaps.U32();
  const std::uint32_t required = bitmaps.U32();
  if (!bitmaps.Ok() || !call.IsOffset(2) || !call.IsOffset(3)) return call.Complete(kBadFormat);

  const auto has = [this](const auto& matches) {
    return std::any_of(users_.begin(), users_.end(), matches);
  };
  if (has([&](const User& user) { return user.key == *key; })) return call.Complete(kKeyIsTaken);
  if (has([&](const User& user) { return user.id == *id; })) return call.Complete(kIdIsTaken);
  if ((permitted & profile_.methods) == 0) return call.Complete(kNothingPermitted);
  if ((required & ~permitted) != 0) return call.Complete(kRequiresMoreThanPermitted);
  if (users_.size() >= profile_.capacity) return call.Complete(kNoRoom);

  std::vector<std::uint8_t> answer(id->begin(), id->end());
  answer.insert(answer.end(), key->begin(), key->end());
  if (call.AnswerData(answer, 4)) users_.push_back({*id, *key, permitted, required});
}

void PreBootUsers::Delete(Call& call) {
  if (!Opens(call, call.Arg(1))) return;
  bytes::Reader items(call.Record(), call.Arg(2));
  const auto id = ReadItem<UserId>(items);
  if (!call.IsOffset(2) || !items.Ok()) return call.Complete(kBadFormat);
  if (!id) return call.Complete(kWrongIdFormat);
  if (std::erase_if(users_, [&](const User& user) { return user.id == *id; }) == 0) {
    call.Complete(kNoSuchUser);
  }
}

void PreBootUsers::TellAuthenticated(Call& call) const {
  if (!authenticated_) return call.Complete(kNobodyAuthenticated);
  if (call.AnswerData(authenticated_->id, 1)) call.AnswerData(authenticated_->key, 2);
}

void PreBootUsers::HandOutCredential(Call& call) {
  const std::uint32_t bitmap = call.Arg(1) & profile_.methods;
  if (!authenticated_ || (bitmap & profile_.method) == 0) return call.Complete(kNotWithThisMethod);
  if (std::find(fetched_.begin(), fetched_.end(), bitmap) != fetched_.end()) {
    return call.Complete(kFetchedBefore);
  }
  if (call.AnswerData(bytes::AsBytes(profile_.credential), 2)) fetched_.push_back(bitmap);
}

void PreBootUsers::TellExistence(Call& call) const {
  constexpr std::uint32_t kIsUserId = 1;
  constexpr std::uint32_t kIsKey = 2;
  if (!Opens(call, call.Arg(1))) return;
  bytes::Reader items(call.Record(), call.Arg(3));
  bool exists = false;
  const auto find = [&](const auto& value, auto User::*field) {
    if (!call.IsOffset(3) || !items.Ok()) return call.Complete(kBadFormat);
    if (!value) return call.Complete(kWrongItemFormat);
    for (const User& user : users_) exists = exists || user.*field == *value;
    if (!exists) call.Complete(kNotThere);
  };
  switch (call.Arg(2)) {
    case kIsUserId:
      return find(ReadItem<UserId>(items), &User::id);
    case kIsKey:
      return find(ReadItem<UserKey>(items), &User::key);
    default:
      return call.Complete(kWrongItemKind);
  }
}

void PreBootUsers::LookUp(Call& call) const {
  if (!Opens(call, call.Arg(1))) return;
  bytes::Reader items(call.Record(), call.Arg(2));
  const auto id = ReadItem<UserId>(items);
  if (!id) return call.Complete(items.Ok() ? kWrongIdFormat : kBadFormat);
  const auto key = ReadItem<UserKey>(items);
  if (!key) return call.Complete(items.Ok() ? kWrongKeyFormat : kBadFormat);
  if (!call.IsOffset(2)) return call.Complete(kBadFormat);
  const auto user = std::find_if(users_.begin(), users_.end(),
                                 [&](const User& u) { return u.id == *id && u.key == *key; });
  if (user == users_.end()) return call.Complete(kNoSuchUser);
  call.SetResult(2, user->permitted);
  call.SetResult(3, user->required);
}

}  // namespace mira::sim
