#ifndef MIRA_SIM_FIRMWARE_SECURITY_H_
#define MIRA_SIM_FIRMWARE_SECURITY_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "bytes/secure.h"
#include "sim/firmware/fields.h"
#include "sim/profile.h"

namespace mira::sim {

// One BIOS password with its counter of wrong attempts.
class StoredPassword {
 public:
  StoredPassword(const Password& password, int wrong_until_locked);

  enum class Check { kRight, kWrong, kLocked };
  Check Verify(std::string_view text);
  bool IsInstalled() const { return !text_.empty(); }
  // Whether a new password keeps the rules; an empty one removes the password.
  bool Allows(std::string_view text) const;
  void Set(std::string_view text) { text_ = bytes::SecureString(text); }
  std::size_t FieldSize() const { return std::size_t{max_length_} + 1; }
  // The answer of select 3: installed, longest, shortest, characters or scan codes.
  std::uint32_t Status(bool scan_codes) const;
  void Reboot() { wrong_ = 0; }
  void Keep(Fields& fields) { fields("password", text_)("wrongAttempts", wrong_); }

 private:
  bytes::SecureString text_;
  std::uint8_t max_length_;
  std::uint8_t min_length_;
  std::uint32_t wrong_until_locked_;
  std::uint32_t wrong_ = 0;
};

// The passwords and the keys that correct ones are exchanged for. A password has one key from one
// start of the machine to the next, so nothing has to be noted when one is handed out.
class Security {
 public:
  // What a key is for: a class's number, or this.
  static constexpr std::uint32_t kPreBootConfiguration = 7;

  explicit Security(const Profile& profile);

  StoredPassword& ForClass(std::uint16_t cls);
  bool UsesScanCodes() const { return scan_codes_; }
  // The key until the next start; never 0 or 0xFFFFFFFF, no two alike.
  std::uint32_t Key(std::uint32_t purpose) const;
  // Whether the word is a key of any purpose.
  bool IsKey(std::uint32_t word) const;
  // Whether a protected command may run: no setup or system password is installed, or the word is
  // the key of a password.
  bool Accepts(std::uint32_t key) const;
  void Reboot();
  void Keep(Fields& fields);

 private:
  bool IsPasswordKey(std::uint32_t word) const;

  StoredPassword class9_;
  StoredPassword class10_;
  StoredPassword class12_;
  bool scan_codes_;
  std::uint32_t key_base_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_SECURITY_H_
