#ifndef MIRA_BUFFERS_GENERIC_DATA_H_
#define MIRA_BUFFERS_GENERIC_DATA_H_

// A block of bytes to or from the firmware: class 2 select 1, class 6 select 5.
//
//   std::vector<std::uint8_t> block(256);
//   CGenericData data;
//   data.IsRead = true;
//   data.BufferArgIndex = 2;
//   data.DataLength = 256;
//   data.Data = block.data();
//   mira.ExecuteDACI(2, 1, data, "", PwdInfo::PWD_NONE);  // data.DataLength: bytes received

#include <cstdint>

#include "buffers/bios_data.h"
#include "platform/api.h"

struct MIRA_API CGenericData : CSimpleTokenData {
  ~CGenericData() override;

  std::uint32_t DataLength = 0;      // bytes to send, or room; after a read, the bytes received
  std::uint32_t BufferArgIndex = 0;  // 1 to 4: the argument word that names the block; else none
  bool IsRead = false;               // whether the firmware fills the block
  std::uint8_t* Data = nullptr;      // the caller's block
};

#endif  // MIRA_BUFFERS_GENERIC_DATA_H_
