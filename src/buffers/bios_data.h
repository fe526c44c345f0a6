#ifndef MIRA_BUFFERS_BIOS_DATA_H_
#define MIRA_BUFFERS_BIOS_DATA_H_

// The request records that a caller hands to CMiraIntf::ExecuteDACI. Most commands need no more
// than four argument words and give back four result words:
//
//   CSimpleTokenData data;
//   data.Arg1 = location;
//   Status status = mira.ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE);
//   if (status == STATUS_SUCCESS) Use(data.Res2);

#include <cstdint>

#include "platform/api.h"

// Base of every request record.
struct MIRA_API IBIOSData {
  IBIOSData() = default;
  IBIOSData(const IBIOSData&) = default;
  IBIOSData& operator=(const IBIOSData&) = default;
  virtual ~IBIOSData();
};

// Four argument words, four result words, and where the security key goes.
struct MIRA_API CSimpleTokenData : IBIOSData {
  ~CSimpleTokenData() override;

  std::uint32_t Arg1 = 0;
  std::uint32_t Arg2 = 0;
  std::uint32_t Arg3 = 0;
  std::uint32_t Arg4 = 0;
  std::int32_t Res1 = 0;  // completion code: 0 success, below 0 general, above 0 function-specific
  std::uint32_t Res2 = 0;
  std::uint32_t Res3 = 0;
  std::uint32_t Res4 = 0;
  // 1 to 4: the argument word that receives the security key when the call is built, whatever
  // stands in it. Any other value: the key is not placed.
  std::uint32_t KeyArgIndex = 0;
};

#endif  // MIRA_BUFFERS_BIOS_DATA_H_
