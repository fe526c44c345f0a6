#ifndef MIRA_CALLIF_PASSWORD_H_
#define MIRA_CALLIF_PASSWORD_H_

// Which BIOS passwords are installed, and the security key that a correct one is exchanged for.
//
//   PwdInfo info;
//   if (mira.GetPwdInfo(info) && (info.installed & PwdInfo::PWD_CLASS9)) ...

#include <cstdint>
#include <string>

#include "callif/calling_interface.h"
#include "callif/scan_codes.h"
#include "platform/com_ptr.h"

struct PwdInfo {
  // Bit values: the password managed by the calling-interface class of that number.
  enum PWDTYPE : std::uint32_t {
    PWD_NONE = 0,
    PWD_CLASS9 = 1,
    PWD_CLASS10 = 2,
    PWD_CLASS12 = 8,  // reported only; no key is derived for it
  };

  std::uint32_t installed = 0;  // a set of PWDTYPE bits
  // Lengths in characters; 0 when a password's status could not be read.
  std::uint32_t class9SecondLength = 0;
  std::uint32_t class9MaxLength = 0;
  std::uint32_t class10SecondLength = 0;
  std::uint32_t class10MaxLength = 0;
  std::uint32_t class12SecondLength = 0;
  std::uint32_t class12MaxLength = 0;
};

// What the firmware says of its passwords at one moment. Built for one operation; COM must be
// initialised.
class CPwdContext {
 public:
  // Makes the three status calls: classes 10, 9 and 12, select 3. A status call that fails makes
  // its password look not installed.
  CPwdContext(CCallingInterface& calling, std::uint32_t bufSize, const CComBSTR& instanceKey);

  static constexpr std::uint32_t kNoKey = 0xFFFFFFFF;

  // The key for the class-10 or class-9 password: 0 when that password is not installed; kNoKey
  // when the text is empty, longer than the password may be, not typeable where scan codes are in
  // force, or wrong.
  std::uint32_t GetSecurityKey(const std::string& password, bool class10);
  // Asks the firmware: the key, or kNoKey. The password is sent as it stands.
  std::uint32_t VerifyPassword(const std::string& password, std::uint16_t cls);

  void Fill(PwdInfo& info) const;

 private:
  struct Entry {
    bool installed = false;
    std::uint32_t max_length = 0;
    std::uint32_t second_length = 0;
  };
  Entry ReadStatus(std::uint16_t cls);
  const Entry& For(std::uint16_t cls) const;

  CCallingInterface& calling_;
  std::uint32_t buffer_size_;
  const CComBSTR& instance_key_;
  bool uses_scan_codes_ = false;
  Entry class10_;
  Entry class9_;
  Entry class12_;
};

#endif  // MIRA_CALLIF_PASSWORD_H_
