#ifndef MIRA_BUFFERS_PASSWORD_DATA_H_
#define MIRA_BUFFERS_PASSWORD_DATA_H_

#include <cstdint>
#include <string>

#include "buffers/bios_data.h"
#include "platform/api.h"

// The request that verifies a BIOS password: classes 9, 10 and 12, select 4. Wipes its text when it
// ends.
struct MIRA_API CVerifyPwdData : CSimpleTokenData {
  CVerifyPwdData() = default;
  CVerifyPwdData(const CVerifyPwdData&) = default;
  CVerifyPwdData& operator=(const CVerifyPwdData& other);
  ~CVerifyPwdData() override;

  // Size in bytes of a password field of the record. To verify: the longest password, as select 3
  // reports it, and its NUL. For a change: the longest password, which each text may have.
  std::uint32_t MaxPwdLen = 0;
  // The password; for a change, the old one.
  std::string Password;
};

// The request that changes a BIOS password: classes 9, 10 and 12, select 5.
struct MIRA_API CChangePwdData : CVerifyPwdData {
  CChangePwdData() = default;
  CChangePwdData(const CChangePwdData&) = default;
  CChangePwdData& operator=(const CChangePwdData& other);
  ~CChangePwdData() override;

  std::string NewPassword;
};

#endif  // MIRA_BUFFERS_PASSWORD_DATA_H_
