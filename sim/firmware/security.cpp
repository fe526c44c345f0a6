#include "sim/firmware/security.h"

#include <algorithm>
#include <iterator>

namespace mira::sim {
namespace {

constexpr std::uint32_t kPasswordClasses[] = {9, 10, 12};

}  // namespace

StoredPassword::StoredPassword(const Password& password, int wrong_until_locked)
    : text_(password.text),
      max_length_(password.max_length),
      min_length_(password.min_length),
      wrong_until_locked_(static_cast<std::uint32_t>(wrong_until_locked)) {}

StoredPassword::Check StoredPassword::Verify(std::string_view text) {
  if (wrong_ >= wrong_until_locked_) return Check::kLocked;
  if (text == std::string_view(text_)) {
    wrong_ = 0;
    return Check::kRight;
  }
  ++wrong_;
  return Check::kWrong;
}

bool StoredPassword::Allows(std::string_view text) const {
  return text.empty() || (text.size() >= min_length_ && text.size() <= max_length_);
}

std::uint32_t StoredPassword::Status(bool scan_codes) const {
  return (IsInstalled() ? 0u : 1u) | std::uint32_t{max_length_} << 8 |
         std::uint32_t{min_length_} << 16 | (scan_codes ? 0u : 1u << 24);
}

Security::Security(const Profile& profile)
    : class9_(profile.class9, profile.wrong_passwords_until_locked),
      class10_(profile.class10, profile.wrong_passwords_until_locked),
      class12_(profile.class12, profile.wrong_passwords_until_locked),
      scan_codes_(profile.passwords_are_scan_codes),
      key_base_(profile.key_seed) {}

StoredPassword& Security::ForClass(std::uint16_t cls) {
  return cls == 9 ? class9_ : cls == 10 ? class10_ : class12_;
}

std::uint32_t Security::Key(std::uint32_t purpose) const {
  // An odd factor keeps different purposes apart.
  constexpr std::uint32_t kFactor = 0x9E3779B1;
  constexpr std::uint32_t kNone = 0xFFFFFFFF;
  const std::uint32_t key = (key_base_ + purpose) * kFactor;
  return key == 0 || key == kNone ? purpose : key;
}

bool Security::IsPasswordKey(std::uint32_t word) const {
  return std::any_of(std::begin(kPasswordClasses), std::end(kPasswordClasses),
                     [&](std::uint32_t cls) { return Key(cls) == word; });
}

bool Security::IsKey(std::uint32_t word) const {
  return IsPasswordKey(word) || Key(kPreBootConfiguration) == word;
}

bool Security::Accepts(std::uint32_t key) const {
  return (!class9_.IsInstalled() && !class10_.IsInstalled()) || IsPasswordKey(key);
}

void Security::Reboot() {
  key_base_ = key_base_ * 1664525 + 1013904223;
  for (StoredPassword* password : {&class9_, &class10_, &class12_}) password->Reboot();
}

void Security::Keep(Fields& fields) {
  fields.Group("security", [&] {
    fields("class9", class9_)("class10", class10_)("class12", class12_)("keyBase", key_base_);
  });
}

}  // namespace mira::sim
