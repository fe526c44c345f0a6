#ifndef MIRA_BUFFERS_HDD_PWD_BUFFER_H_
#define MIRA_BUFFERS_HDD_PWD_BUFFER_H_

// Drive passwords, class 10: list the drives (selects 11, 28), verify (13, 30), set, change or
// clear (14, 31).
//
//   CHDDPwd data;
//   mira.ExecuteDACI(10, 11, data, "", PwdInfo::PWD_NONE);
//   for (const auto& [handle, description] : data.HDDList) ...

#include <cstdint>
#include <list>
#include <string>
#include <utility>

#include "buffers/buffer.h"

// Wipes its passwords when it ends.
struct MIRA_API CHDDPwd : CSimpleTokenData {
  CHDDPwd() = default;
  CHDDPwd(const CHDDPwd&) = default;
  CHDDPwd& operator=(const CHDDPwd& other);
  ~CHDDPwd() override;

  std::uint32_t HDDHandle = 0;  // as the list gives it
  std::string Password;         // to verify; for a change, the current one, empty when none is set
  std::string NewPassword;      // for a change; empty to clear
  std::string AdminPassword;    // where class 10 select 12 says that it is required, else empty
  std::uint32_t ATASecurityMode = 0;  // for a change without an administrator password: 0 or 1
  // Filled by the list operation, behind what stands there: handle and description.
  std::list<std::pair<std::uint8_t, std::string>> HDDList;
};

class CHDDPwdBuffer : public CBuffer {
 public:
  using CBuffer::CBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;
  void DisplayOutputBuffer() override;
  void DisplayReturnCode() override;

 private:
  std::list<std::pair<std::uint8_t, std::string>> ReadDrives() const;
};

#endif  // MIRA_BUFFERS_HDD_PWD_BUFFER_H_
