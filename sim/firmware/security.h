#ifndef MIRA_SIM_FIRMWARE_SECURITY_H_
#define MIRA_SIM_FIRMWARE_SECURITY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "sim/firmware/handler.h"
#include "sim/profile.h"

namespace mira::sim {

// One BIOS password with its counter of wrong attempts.
class StoredPassword {
 public:
  explicit StoredPassword(const Password& password, int wrong_until_locked)
      : password_(password), wrong_until_locked_(wrong_until_locked) {}

  enum class Check { kRight, kWrong, kLocked };
  Check Verify(const std::string& text);
  bool IsInstalled() const { return !password_.text.empty(); }
  // Whether a new password keeps the rules; an empty one removes the password.
  bool Allows(const std::string& text) const;
  void Set(const std::string& text) { password_.text = text; }
  std::size_t FieldSize() const { return std::size_t{password_.max_length} + 1; }
  // The answer of select 3: installed, longest, shortest, characters or scan codes.
  std::uint32_t Status(bool scan_codes) const;
  void Reboot() { wrong_ = 0; }

 private:
  Password password_;
  int wrong_until_locked_;
  int wrong_ = 0;
};

// The passwords and the keys that correct ones are exchanged for. Keys hold until the machine
// restarts.
class Security {
 public:
  explicit Security(const Profile& profile);

  StoredPassword& ForClass(std::uint16_t cls);
  bool UsesScanCodes() const { return scan_codes_; }
  std::uint32_t IssueKey();
  // A number that was no key before and opens nothing by itself: for keys of other kinds.
  std::uint32_t NextKey();
  // Whether a protected command may run: no setup or system password is installed, or the key was
  // issued.
  bool Accepts(std::uint32_t key) const;
  void Reboot();

 private:
  StoredPassword class9_;
  StoredPassword class10_;
  StoredPassword class12_;
  bool scan_codes_;
  std::uint32_t next_key_;
  std::vector<std::uint32_t> keys_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_SECURITY_H_
