#include "sim/firmware/security.h"

#include <algorithm>

namespace mira::sim {

StoredPassword::Check StoredPassword::Verify(const std::string& text) {
  if (wrong_ >= wrong_until_locked_) return Check::kLocked;
  if (text == password_.text) {
    wrong_ = 0;
    return Check::kRight;
  }
  ++wrong_;
  return Check::kWrong;
}

bool StoredPassword::Allows(const std::string& text) const {
  return text.empty() ||
         (text.size() >= password_.min_length && text.size() <= password_.max_length);
}

std::uint32_t StoredPassword::Status(bool scan_codes) const {
  return (IsInstalled() ? 0u : 1u) | std::uint32_t{password_.max_length} << 8 |
         std::uint32_t{password_.min_length} << 16 | (scan_codes ? 0u : 1u << 24);
}

Security::Security(const Profile& profile)
    : class9_(profile.class9, profile.wrong_passwords_until_locked),
      class10_(profile.class10, profile.wrong_passwords_until_locked),
      class12_(profile.class12, profile.wrong_passwords_until_locked),
      scan_codes_(profile.passwords_are_scan_codes),
      next_key_(profile.key_seed) {}

StoredPassword& Security::ForClass(std::uint16_t cls) {
  return cls == 9 ? class9_ : cls == 10 ? class10_ : class12_;
}

std::uint32_t Security::NextKey() {
  constexpr std::uint32_t kNone = 0xFFFFFFFF;
  do {
    next_key_ = next_key_ * 1664525 + 1013904223;
  } while (next_key_ == 0 || next_key_ == kNone);
  return next_key_;
}

std::uint32_t Security::IssueKey() { return keys_.emplace_back(NextKey()); }

bool Security::Accepts(std::uint32_t key) const {
  if (!class9_.IsInstalled() && !class10_.IsInstalled()) return true;
  return std::find(keys_.begin(), keys_.end(), key) != keys_.end();
}

void Security::Reboot() {
  keys_.clear();
  for (StoredPassword* password : {&class9_, &class10_, &class12_}) password->Reboot();
}

}  // namespace mira::sim
